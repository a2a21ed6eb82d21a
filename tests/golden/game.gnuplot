set encoding utf8
set terminal svg font 'sans,12' fontscale 1.15 size 1600,1195 background 'white' noenhanced
set multiplot
set tics nomirror font ',10'
set grid back lc rgb '#D0D0D0' lt 1
set border 3
set format x ''
set xrange [2.47:2.6]
set xtics ('' 2.48, '' 2.5, '' 2.52, '' 2.54, '' 2.56, '' 2.58, '' 2.6)
set label 'hostile' at screen 0.1156, screen 0.9799 left font ',15'
set label 'com.example.racer/Гонка? 日`touch a`''.system("touch b").''#118' at screen 0.1156, screen 0.9640 left font ',13'
set label '10 frames, the first at 2.482 s and the last at 2.595 s; the picture shows 130 ms, one pixel 112 µs' at screen 0.1156, screen 0.9481 left font ',11'
set label 'in colour: as given; in black: with --vs vendor.perf.pfar.down.enable=0' at screen 0.1156, screen 0.9322 left font ',11'
unset logscale y
set yrange [0:21.2666658]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.9029
set bmargin at screen 0.7188
set key at screen 0.8469, screen 0.9079 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'time between frames that the application queues, ms' at screen 0.1156, screen 0.9105 left font ',11'
$data1 << END 9 rows: 115.735957 300.668
$data2 << END 2 rows: 7.67 24.99999
$data3 << END 2 rows: 7.67 50.0001
$data4 << END 1 rows: 2.56 20.5333
$data5 << END 1 rows: 2.56 20.5333 0 2.56 20.5333 "63"
plot NaN notitle, $data1 using 1:2 with points pt 7 ps 0.35 lc rgb '#0072B2' title 'frame interval', $data2 using 1:2 with lines lw 1.5 lc rgb '#E69F00' title '1 refresh period', $data3 using 1:2 with lines lw 1.5 lc rgb '#E69F00' dt 2 title '2 periods', $data4 using 1:2 with points pt 9 ps 0.8 lc rgb '#D55E00' title '1 above 18 ms, max 62.7 ms', $data5 using 1:2:3 with labels center offset 0,-0.8 font ',9' notitle
unset label
unset logscale y
set yrange [0:6.9]
set ytics ('0' 0, '3' 3, '6' 6)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.6921
set bmargin at screen 0.6502
set key at screen 0.8469, screen 0.6971 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'missed refreshes, against the pace of the 15 frames before' at screen 0.1156, screen 0.6996 left font ',11'
$data6 << END 1 rows: 2.567213 2.567213 0 6
plot NaN notitle, $data6 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#D55E00' lc rgb '#D55E00' lw 2 title 'missed: 6'
unset label
unset logscale y
set yrange [0:4.3]
set ytics ('0' 0, '1' 1, '2' 2, '3' 3, '4' 4)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.6234
set bmargin at screen 0.5397
set key at screen 0.8469, screen 0.6285 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'frames in the queue' at screen 0.1156, screen 0.6310 left font ',11'
$data7 << END 36 rows: 1712.02875 1987
plot NaN notitle, $data7 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'queue depth'
unset label
unset logscale y
set yrange [0:6]
set ytics ('5: unclassified or idle' 5.5, '4: 107 to 122 fps (120 Hz)' 4.5, '3: 77 to 92 fps (90 Hz)' 3.5, '2: 47 to 62 fps (60 Hz)' 2.5, '1: 27 to 32 fps' 1.5, '0: 27 fps and less' 0.5)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.5130
set bmargin at screen 0.4276
set key at screen 0.8469, screen 0.5180 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'frame-rate mode that the library measures, once a second' at screen 0.1156, screen 0.5205 left font ',11'
$data8 << END 1 rows: 2.47 2.6 4.35 4.9
$data9 << END 1 rows: 2.47 2.6 4.1 4.3
plot NaN notitle, $data8 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#0072B2' lc rgb '#0072B2' lw 1 notitle, $data9 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#000000' lc rgb '#000000' lw 1 notitle, keyentry with boxxyerror fs solid noborder fc rgb '#0072B2' title 'mode', keyentry with boxxyerror fs solid noborder fc rgb '#E6E6E6' title 'shaded: no DOWN, UP, boost', keyentry with boxxyerror fs solid noborder fc rgb '#000000' title 'mode with --vs'
unset label
set logscale y
set yrange [0.0625:16]
set ytics ('0.0625' 0.0625, '0.125' 0.125, '0.25' 0.25, '0.5' 0.5, '1' 1, '2' 2, '4' 4, '8' 8, '16' 16)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.4008
set bmargin at screen 0.2167
set key at screen 0.8469, screen 0.4059 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'scale of the requests (logarithmic): UP, above 1, asks for more speed; DOWN, below 1, for less' at screen 0.1156, screen 0.4084 left font ',11'
$data10 << END 3 rows: 14.925771 14.983694 6 50.609
$data11 << END 7 rows: 72.228242 72.412642 7.196 28
$data12 << END 3 rows: 15.374 0.43125
$data13 << END 8 rows: 67.352704 245.643
$data14 << END 2 rows: 7.67 3
plot NaN notitle, $data10 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#D55E00' lc rgb '#D55E00' lw 1 title 'UP: 2', $data11 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#009E73' lc rgb '#009E73' lw 1 title 'DOWN: 7', $data12 using 1:2 with points pt 11 ps 0.9 lc rgb '#000000' title 'DOWN below 0.0625: 3', $data13 using 1:2 with lines lw 1 lc rgb '#000000' title 'UP with --vs: 2', keyentry with lines lw 1 lc rgb '#000000' title 'DOWN with --vs: 0', $data14 using 1:2 with lines lw 1 lc rgb '#888888' notitle
unset label
unset logscale y
set yrange [0:2]
set ytics ('jank boost' 1.5, 'boost verdict' 0.5)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.1900
set bmargin at screen 0.1397
set key at screen 0.8469, screen 0.1950 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'jank boosts until their release, and vsyncs with a boost verdict' at screen 0.1156, screen 0.1975 left font ',11'
$data15 << END 4 rows: 25.853395 25.918173 13.5 19
$data16 << END 4 rows: 25.853395 25.918173 11 13
plot NaN notitle, $data15 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#AA4488' lc rgb '#AA4488' lw 1 notitle, $data16 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#000000' lc rgb '#000000' lw 1 notitle, keyentry with boxxyerror fs solid noborder fc rgb '#AA4488' title 'jank boost: 4', keyentry with boxxyerror fs solid noborder fc rgb '#D55E00' title 'boost verdict: 0', keyentry with boxxyerror fs solid noborder fc rgb '#000000' title 'with --vs: 4 and 0'
unset label
set xtics ('2.48' 2.48, '2.50' 2.5, '2.52' 2.52, '2.54' 2.54, '2.56' 2.56, '2.58' 2.58, '2.60' 2.6)
set xlabel 'time since the start of the trace, s' font ',11'
unset logscale y
set yrange [0:144.000006]
set ytics ('0' 0, '30' 30, '60' 60, '90' 90, '120' 120)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.1130
set bmargin at screen 0.0460
set key at screen 0.8469, screen 0.1180 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'refresh rate of the display, Hz' at screen 0.1156, screen 0.1205 left font ',11'
$data17 << END 2 rows: 7.67 360
plot NaN notitle, $data17 using 1:2 with lines lw 1.5 lc rgb '#000000' title 'display', keyentry with points pt 7 ps 0.7 lc rgb '#E69F00' title 'refresh-rate hint: 0', keyentry with points pt 6 ps 1.1 lc rgb '#000000' title 'refresh-rate hint, --vs: 0'
unset label
unset multiplot
