set encoding utf8
set terminal svg font 'sans,12' fontscale 1.15 size 1600,1176 background 'white' noenhanced
set multiplot
set tics nomirror font ',10'
set grid back lc rgb '#D0D0D0' lt 1
set border 3
set format x ''
set xrange [2.705:5.5]
set xtics ('' 3, '' 3.5, '' 4, '' 4.5, '' 5, '' 5.5)
set label 'hostile' at screen 0.1156, screen 0.9796 left font ',15'
set label 'com.example.racer/Гонка? 日`touch a`''.system("touch b").''#118' at screen 0.1156, screen 0.9634 left font ',13'
set label '216 frames, the first at 2.711 s and the last at 5.500 s; the picture shows 2.79 s, one pixel 2.41 ms' at screen 0.1156, screen 0.9473 left font ',11'
set object rectangle from 3.041964, graph 0 to 4.050266, graph 1 behind fs solid noborder fc rgb '#E6E6E6'
unset logscale y
set yrange [0:23.854588]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.9175
set bmargin at screen 0.7304
set key at screen 0.8469, screen 0.9226 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'time between frames that the application queues, ms' at screen 0.1156, screen 0.9252 left font ',11'
$data1 << END 216 rows: 102148.810116 351451.602
$data2 << END 4 rows: 42.205 141.66689
$data3 << END 2 rows: 9.705 50.0001
plot NaN notitle, $data1 using 1:2 with points pt 7 ps 0.35 lc rgb '#0072B2' title 'frame interval', $data2 using 1:2 with lines lw 1.5 lc rgb '#E69F00' title '1 refresh period', $data3 using 1:2 with lines lw 1.5 lc rgb '#E69F00' dt 2 title '2 periods'
unset label
unset logscale y
set yrange [0:1.15]
set ytics ('0' 0, '1' 1)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.7032
set bmargin at screen 0.6607
set key at screen 0.8469, screen 0.7083 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'missed refreshes, against the pace of the 15 frames before' at screen 0.1156, screen 0.7109 left font ',11'
plot NaN notitle, keyentry with boxxyerror fs solid border fc rgb '#D55E00' lc rgb '#D55E00' lw 2 title 'missed: 0'
unset label
unset logscale y
set yrange [0:5.3]
set ytics ('0' 0, '1' 1, '2' 2, '3' 3, '4' 4, '5' 5)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.6335
set bmargin at screen 0.5485
set key at screen 0.8469, screen 0.6386 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'frames in the queue' at screen 0.1156, screen 0.6412 left font ',11'
$data4 << END 145 rows: 48219.78500065 48423.82000065 38431 49469
$data5 << END 290 rows: 192693.7450026 168775.15806
plot NaN notitle, $data4 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#C6DFEF' title 'min to max', $data5 using 1:2 with lines lw 1.5 lc rgb '#0072B2' title 'mean of 19.3 ms'
unset label
unset logscale y
set yrange [0:6]
set ytics ('5: unclassified or idle' 5.5, '4: 107 to 122 fps (120 Hz)' 4.5, '3: 77 to 92 fps (90 Hz)' 3.5, '2: 47 to 62 fps (60 Hz)' 2.5, '1: 27 to 32 fps' 1.5, '0: 27 fps and less' 0.5)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.5213
set bmargin at screen 0.4345
set key at screen 0.8469, screen 0.5264 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'frame-rate mode that the library measures, once a second' at screen 0.1156, screen 0.5289 left font ',11'
$data6 << END 1 rows: 3.041964 4.050266 5.15 5.85
$data7 << END 1 rows: 2.705 3.041964 4.15 4.85
$data8 << END 1 rows: 4.050266 5.066947 3.15 3.85
$data9 << END 1 rows: 5.066947 5.5 2.15 2.85
plot NaN notitle, $data6 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#888888' lc rgb '#888888' lw 1 notitle, $data7 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#0072B2' lc rgb '#0072B2' lw 1 notitle, $data8 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#0072B2' lc rgb '#0072B2' lw 1 notitle, $data9 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#0072B2' lc rgb '#0072B2' lw 1 notitle, keyentry with boxxyerror fs solid noborder fc rgb '#0072B2' title 'mode', keyentry with boxxyerror fs solid noborder fc rgb '#E6E6E6' title 'shaded: no DOWN, UP, boost'
unset label
set logscale y
set yrange [0.125:8]
set ytics ('0.125' 0.125, '0.25' 0.25, '0.5' 0.5, '1' 1, '2' 2, '4' 4, '8' 8)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.4073
set bmargin at screen 0.2202
set key at screen 0.8469, screen 0.4124 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'scale of the requests (logarithmic): UP, above 1, asks for more speed; DOWN, below 1, for less' at screen 0.1156, screen 0.4150 left font ',11'
$data10 << END 68 rows: 10392.157191 10423.000252 668.092 2346
$data11 << END 2 rows: 13.705 3
plot NaN notitle, keyentry with boxxyerror fs solid border fc rgb '#D55E00' lc rgb '#D55E00' lw 1 title 'UP: 0', $data10 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#009E73' lc rgb '#009E73' lw 1 title 'DOWN: 67', $data11 using 1:2 with lines lw 1 lc rgb '#888888' notitle
unset label
unset logscale y
set yrange [0:2]
set ytics ('jank boost' 1.5, 'boost verdict' 0.5)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.1930
set bmargin at screen 0.1420
set key at screen 0.8469, screen 0.1981 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'jank boosts until their release, and vsyncs with a boost verdict' at screen 0.1156, screen 0.2007 left font ',11'
$data12 << END 67 rows: 10019.652387 10046.438305 2619.7 4214.3
plot NaN notitle, $data12 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#AA4488' lc rgb '#AA4488' lw 1 notitle, keyentry with boxxyerror fs solid noborder fc rgb '#AA4488' title 'jank boost: 66', keyentry with boxxyerror fs solid noborder fc rgb '#D55E00' title 'boost verdict: 0'
unset label
set xtics ('3.0' 3, '3.5' 3.5, '4.0' 4, '4.5' 4.5, '5.0' 5, '5.5' 5.5)
set xlabel 'time since the start of the trace, s' font ',11'
unset logscale y
set yrange [0:144.000006]
set ytics ('0' 0, '30' 30, '60' 60, '90' 90, '120' 120)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.1148
set bmargin at screen 0.0468
set key at screen 0.8469, screen 0.1199 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'refresh rate of the display, Hz' at screen 0.1156, screen 0.1224 left font ',11'
$data13 << END 4 rows: 42.205 780
$data14 << END 1 rows: 3.516808 60
plot NaN notitle, $data13 using 1:2 with lines lw 1.5 lc rgb '#000000' title 'display', $data14 using 1:2 with points pt 7 ps 0.7 lc rgb '#E69F00' title 'refresh-rate hint: 1'
unset label
unset multiplot
