set encoding utf8
set terminal svg font 'sans,12' fontscale 1.15 size 1600,1195 background 'white' noenhanced
set multiplot
set tics nomirror font ',10'
set grid back lc rgb '#D0D0D0' lt 1
set border 3
set format x ''
set xrange [0:6.002003]
set xtics ('' 0, '' 1, '' 2, '' 3, '' 4, '' 5, '' 6)
set label 'hostile' at screen 0.1156, screen 0.9799 left font ',15'
set label 'com.example.racer/Гонка? 日`touch a`''.system("touch b").''#118' at screen 0.1156, screen 0.9640 left font ',13'
set label '552 frames, the first at 0.000 s and the last at 6.000 s; the picture shows 6.00 s, one pixel 5.17 ms' at screen 0.1156, screen 0.9481 left font ',11'
set label 'in colour: as given; in black: with --vs vendor.perf.pfar.down.enable=0' at screen 0.1156, screen 0.9322 left font ',11'
set object rectangle from 0, graph 0 to 1.025216, graph 1 behind fs solid noborder fc rgb '#E6E6E6'
set object rectangle from 3.041964, graph 0 to 4.050266, graph 1 behind fs solid noborder fc rgb '#E6E6E6'
unset logscale y
set yrange [0:23.7452]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.9029
set bmargin at screen 0.7188
set key at screen 0.8469, screen 0.9079 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'time between frames that the application queues, ms' at screen 0.1156, screen 0.9105 left font ',11'
$data1 << END 550 rows: 529430.16838 1886422.49
$data2 << END 4 rows: 41.508012 141.66689
$data3 << END 2 rows: 7 50.0001
$data4 << END 1 rows: 2.56 22.9264
$data5 << END 1 rows: 2.56 22.9264 0 2.56 22.9264 "63"
plot NaN notitle, $data1 using 1:2 with points pt 7 ps 0.35 lc rgb '#0072B2' title 'frame interval', $data2 using 1:2 with lines lw 1.5 lc rgb '#E69F00' title '1 refresh period', $data3 using 1:2 with lines lw 1.5 lc rgb '#E69F00' dt 2 title '2 periods', $data4 using 1:2 with points pt 9 ps 0.8 lc rgb '#D55E00' title '1 above 20 ms, max 62.7 ms', $data5 using 1:2:3 with labels center offset 0,-0.8 font ',9' notitle
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
$data6 << END 9 rows: 106.723367 106.723367 0 90
plot NaN notitle, $data6 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#D55E00' lc rgb '#D55E00' lw 2 title 'missed: 14'
unset label
unset logscale y
set yrange [0:5.3]
set ytics ('0' 0, '1' 1, '2' 2, '3' 3, '4' 4, '5' 5)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.6234
set bmargin at screen 0.5397
set key at screen 0.8469, screen 0.6285 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'frames in the queue' at screen 0.1156, screen 0.6310 left font ',11'
$data7 << END 145 rows: 42062.0370245601 42500.1832435587 30747 44901
$data8 << END 290 rows: 168692.296320236 147452.8150661
plot NaN notitle, $data7 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#C6DFEF' title 'min to max', $data8 using 1:2 with lines lw 1.5 lc rgb '#0072B2' title 'mean of 41.4 ms'
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
$data9 << END 2 rows: 6.083928 9.125748 16.05 17.7
$data10 << END 2 rows: 6.083928 9.125748 15.3 15.9
$data11 << END 1 rows: 1.025216 3.041964 4.35 4.9
$data12 << END 1 rows: 1.025216 3.041964 4.1 4.3
$data13 << END 1 rows: 4.050266 5.066947 3.35 3.9
$data14 << END 1 rows: 4.050266 5.066947 3.1 3.3
$data15 << END 1 rows: 5.066947 6.002003 2.35 2.9
$data16 << END 1 rows: 5.066947 6.002003 2.1 2.3
plot NaN notitle, $data9 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#888888' lc rgb '#888888' lw 1 notitle, $data10 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#000000' lc rgb '#000000' lw 1 notitle, $data11 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#0072B2' lc rgb '#0072B2' lw 1 notitle, $data12 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#000000' lc rgb '#000000' lw 1 notitle, $data13 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#0072B2' lc rgb '#0072B2' lw 1 notitle, $data14 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#000000' lc rgb '#000000' lw 1 notitle, $data15 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#0072B2' lc rgb '#0072B2' lw 1 notitle, $data16 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#000000' lc rgb '#000000' lw 1 notitle, keyentry with boxxyerror fs solid noborder fc rgb '#0072B2' title 'mode', keyentry with boxxyerror fs solid noborder fc rgb '#E6E6E6' title 'shaded: no DOWN, UP, boost', keyentry with boxxyerror fs solid noborder fc rgb '#000000' title 'mode with --vs'
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
$data17 << END 19 rows: 455.971661 457.871661 190 1003.728
$data18 << END 258 rows: 119739.271522 120121.316981 13090.8285 33411
$data19 << END 3 rows: 15.374 0.43125
$data20 << END 48 rows: 2292.139416 5041.518
$data21 << END 2 rows: 12.004006 3
plot NaN notitle, $data17 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#D55E00' lc rgb '#D55E00' lw 1 title 'UP: 19', $data18 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#009E73' lc rgb '#009E73' lw 1 title 'DOWN: 258', $data19 using 1:2 with points pt 11 ps 0.9 lc rgb '#000000' title 'DOWN below 0.0625: 3', $data20 using 1:2 with lines lw 1 lc rgb '#000000' title 'UP with --vs: 19', keyentry with lines lw 1 lc rgb '#000000' title 'DOWN with --vs: 0', $data21 using 1:2 with lines lw 1 lc rgb '#888888' notitle
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
$data22 << END 192 rows: 74557.385193 74754.404675 25012.8 35203.2
$data23 << END 192 rows: 74557.385193 74754.404675 20380.8 24086.4
plot NaN notitle, $data22 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#AA4488' lc rgb '#AA4488' lw 1 notitle, $data23 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#000000' lc rgb '#000000' lw 1 notitle, keyentry with boxxyerror fs solid noborder fc rgb '#AA4488' title 'jank boost: 192', keyentry with boxxyerror fs solid noborder fc rgb '#D55E00' title 'boost verdict: 0', keyentry with boxxyerror fs solid noborder fc rgb '#000000' title 'with --vs: 192 and 0'
unset label
set xtics ('0' 0, '1' 1, '2' 2, '3' 3, '4' 4, '5' 5, '6' 6)
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
$data24 << END 4 rows: 41.508012 780
$data25 << END 2 rows: 7.033616 240
$data26 << END 2 rows: 7.033616 240
plot NaN notitle, $data24 using 1:2 with lines lw 1.5 lc rgb '#000000' title 'display', $data25 using 1:2 with points pt 7 ps 0.7 lc rgb '#E69F00' title 'refresh-rate hint: 2', $data26 using 1:2 with points pt 6 ps 1.1 lc rgb '#000000' title 'refresh-rate hint, --vs: 2'
unset label
unset multiplot
