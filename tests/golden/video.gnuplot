set encoding utf8
set terminal svg font 'sans,12' fontscale 1.15 size 1600,1195 background 'white' noenhanced
set multiplot
set tics nomirror font ',10'
set grid back lc rgb '#D0D0D0' lt 1
set border 3
set format x ''
set xrange [1:4.45]
set xtics ('' 1, '' 1.5, '' 2, '' 2.5, '' 3, '' 3.5, '' 4)
set label 'video-30fps-gap.ftrace.txt' at screen 0.1156, screen 0.9799 left font ',15'
set label 'com.example.video/com.example.video.FullScreen#0' at screen 0.1156, screen 0.9640 left font ',13'
set label '35 frames, the first at 3.295 s and the last at 4.427 s; the picture shows 3.45 s, one pixel 2.97 ms' at screen 0.1156, screen 0.9481 left font ',11'
set label 'in colour: as given; in black: with --vs vendor.perf.jr10.enable=0' at screen 0.1156, screen 0.9322 left font ',11'
set object rectangle from 1, graph 0 to 1.077835, graph 1 behind fs solid noborder fc rgb '#E6E6E6'
set object rectangle from 3.295313, graph 0 to 4.344546, graph 1 behind fs solid noborder fc rgb '#E6E6E6'
unset logscale y
set yrange [0:48.024]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.9029
set bmargin at screen 0.7188
set key at screen 0.8469, screen 0.9079 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'time between frames that the application queues, ms' at screen 0.1156, screen 0.9105 left font ',11'
$data1 << END 34 rows: 2416.252959 19819.99
$data2 << END 2 rows: 9.9 50.0001
$data3 << END 2 rows: 9.9 99.9999
plot NaN notitle, $data1 using 1:2 with points pt 7 ps 0.35 lc rgb '#0072B2' title 'frame interval', $data2 using 1:2 with lines lw 1.5 lc rgb '#E69F00' title '1 refresh period', $data3 using 1:2 with lines lw 1.5 lc rgb '#E69F00' dt 2 title '2 periods'
unset label
unset logscale y
set yrange [0:1.15]
set ytics ('0' 0, '1' 1)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.6921
set bmargin at screen 0.6502
set key at screen 0.8469, screen 0.6971 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'missed refreshes, against the pace of the 15 frames before' at screen 0.1156, screen 0.6996 left font ',11'
$data4 << END 8 rows: 144.194598 144.194598 0 36
plot NaN notitle, $data4 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#D55E00' lc rgb '#D55E00' lw 2 title 'missed: 8'
unset label
unset logscale y
set yrange [0:1.3]
set ytics ('0' 0, '1' 1)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.6234
set bmargin at screen 0.5397
set key at screen 0.8469, screen 0.6285 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'frames in the queue' at screen 0.1156, screen 0.6310 left font ',11'
$data5 << END 133 rows: 36161.590879 4083
plot NaN notitle, $data5 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'queue depth'
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
$data6 << END 2 rows: 7.590626 9.766927 16.05 17.7
$data7 << END 2 rows: 7.590626 9.766927 15.3 15.9
$data8 << END 2 rows: 9.766927 12.195313 4.05 5.7
$data9 << END 2 rows: 9.766927 12.195313 3.3 3.9
plot NaN notitle, $data6 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#888888' lc rgb '#888888' lw 1 notitle, $data7 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#000000' lc rgb '#000000' lw 1 notitle, $data8 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#0072B2' lc rgb '#0072B2' lw 1 notitle, $data9 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#000000' lc rgb '#000000' lw 1 notitle, keyentry with boxxyerror fs solid noborder fc rgb '#0072B2' title 'mode', keyentry with boxxyerror fs solid noborder fc rgb '#E6E6E6' title 'shaded: no DOWN, UP, boost', keyentry with boxxyerror fs solid noborder fc rgb '#000000' title 'mode with --vs'
unset label
set logscale y
set yrange [0.5:2]
set ytics ('0.5' 0.5, '1' 1, '2' 2)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.4008
set bmargin at screen 0.2167
set key at screen 0.8469, screen 0.4059 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'scale of the requests (logarithmic): UP, above 1, asks for more speed; DOWN, below 1, for less' at screen 0.1156, screen 0.4084 left font ',11'
set label 'no DOWN or UP' at graph 0.5, graph 0.6 center front
$data10 << END 2 rows: 9.9 3
plot NaN notitle, keyentry with boxxyerror fs solid border fc rgb '#D55E00' lc rgb '#D55E00' lw 1 title 'UP: 0', keyentry with boxxyerror fs solid border fc rgb '#009E73' lc rgb '#009E73' lw 1 title 'DOWN: 0', keyentry with lines lw 1 lc rgb '#000000' title 'UP with --vs: 0', keyentry with lines lw 1 lc rgb '#000000' title 'DOWN with --vs: 0', $data10 using 1:2 with lines lw 1 lc rgb '#888888' notitle
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
$data11 << END 4 rows: 44.126264 44.24902002 3.5 9
plot NaN notitle, $data11 using 1:3:1:2:3:4 with boxxyerror fs solid border fc rgb '#D55E00' lc rgb '#D55E00' lw 1 notitle, keyentry with boxxyerror fs solid noborder fc rgb '#AA4488' title 'jank boost: 0', keyentry with boxxyerror fs solid noborder fc rgb '#D55E00' title 'boost verdict: 4', keyentry with boxxyerror fs solid noborder fc rgb '#000000' title 'with --vs: 0 and 0'
unset label
set xtics ('1.0' 1, '1.5' 1.5, '2.0' 2, '2.5' 2.5, '3.0' 3, '3.5' 3.5, '4.0' 4)
set xlabel 'time since the start of the trace, s' font ',11'
unset logscale y
set yrange [0:72.0000029]
set ytics ('0' 0, '30' 30, '60' 60)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.1130
set bmargin at screen 0.0460
set key at screen 0.8469, screen 0.1180 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'refresh rate of the display, Hz' at screen 0.1156, screen 0.1205 left font ',11'
$data12 << END 2 rows: 9.9 180
plot NaN notitle, $data12 using 1:2 with lines lw 1.5 lc rgb '#000000' title 'display', keyentry with points pt 7 ps 0.7 lc rgb '#E69F00' title 'refresh-rate hint: 0', keyentry with points pt 6 ps 1.1 lc rgb '#000000' title 'refresh-rate hint, --vs: 0'
unset label
unset multiplot
