set encoding utf8; set terminal svg font 'sans,12' fontscale 1.15 size 1600,2292 background 'white' noenhanced; set multiplot; set tics nomirror font ',10'; set grid back lc rgb '#D0D0D0' lt 1; set border 3; set format x ''; set xrange [3:4]; set xtics ('' 3, '' 3.1, '' 3.2, '' 3.3, '' 3.4, '' 3.5, '' 3.6, '' 3.7, '' 3.8, '' 3.9, '' 4); set label 'game60 on device' at screen 0.1156, screen 0.9895 left font ',15'; set label 'schedutil, 3 buffers, DOWN cap, UP governor, boost compositor, depth found' at screen 0.1156, screen 0.9812 left font ',13'; set label '--vs vendor.perf.pfar.down.enable=0' at screen 0.1156, screen 0.9729 left font ',11'; unset logscale y; set yrange [0:19.9999992]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.9577; set bmargin at screen 0.9010; set key at screen 0.8469, screen 0.9603 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'library off: time from the start of a frame to its queueing, ms' at screen 0.1156, screen 0.9616 left font ',11'
$data1 << END 60 rows: 6705.78672506 15205.33024
$data2 << END 2 rows: 11 50.0001
plot NaN notitle, $data1 using 1:2 with points pt 7 ps 0.3 lc rgb '#0072B2' title 'frame', $data2 using 1:2 with lines lw 1.5 lc rgb '#E69F00' title '1 refresh period'
unset label; unset logscale y; set yrange [0:2.3]; set ytics ('0' 0, '1' 1, '2' 2); set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.8870; set bmargin at screen 0.8565; set key at screen 0.8469, screen 0.8896 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'library off: frames in the queue' at screen 0.1156, screen 0.8909 left font ',11'
$data3 << END 242 rows: 107723.38451056 44226
plot NaN notitle, $data3 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'depth'
unset label; unset logscale y; set yrange [0:2940]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.8425; set bmargin at screen 0.7901; set key at screen 0.8469, screen 0.8451 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'library off: frequency of cluster big (application), MHz' at screen 0.1156, screen 0.8464 left font ',11'
$data4 << END 14 rows: 385.94582081 165000
plot NaN notitle, $data4 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'frequency'
unset label; unset logscale y; set yrange [0:1911]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.7762; set bmargin at screen 0.7238; set key at screen 0.8469, screen 0.7788 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'library off: frequency of cluster little (compositor), MHz' at screen 0.1156, screen 0.7801 left font ',11'
$data5 << END 2 rows: 11 2880
plot NaN notitle, $data5 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'frequency'
unset label; unset logscale y; set yrange [0:513.45]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.7099; set bmargin at screen 0.6750; set key at screen 0.8469, screen 0.7125 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'library off: power of the processor, mW' at screen 0.1156, screen 0.7138 left font ',11'
$data6 << END 120 rows: 26610.16647298 1263663.191
plot NaN notitle, $data6 using 1:2 with lines lw 1.5 lc rgb '#AA4488' title 'power, mean'
unset label; unset logscale y; set yrange [0:19.9999992]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.6610; set bmargin at screen 0.6043; set key at screen 0.8469, screen 0.6636 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'as given: time from the start of a frame to its queueing, ms' at screen 0.1156, screen 0.6649 left font ',11'
$data7 << END 60 rows: 6705.8375369 15256.14208
$data8 << END 2 rows: 11 50.0001
plot NaN notitle, $data7 using 1:2 with points pt 7 ps 0.3 lc rgb '#0072B2' title 'frame', $data8 using 1:2 with lines lw 1.5 lc rgb '#E69F00' title '1 refresh period'
unset label; unset logscale y; set yrange [0:2.3]; set ytics ('0' 0, '1' 1, '2' 2); set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.5903; set bmargin at screen 0.5598; set key at screen 0.8469, screen 0.5929 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'as given: frames in the queue' at screen 0.1156, screen 0.5942 left font ',11'
$data9 << END 242 rows: 107723.79259315 44226
plot NaN notitle, $data9 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'depth'
unset label; unset logscale y; set yrange [0:2940]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.5458; set bmargin at screen 0.4935; set key at screen 0.8469, screen 0.5484 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'as given: frequency of cluster big (application), MHz' at screen 0.1156, screen 0.5497 left font ',11'
$data10 << END 18 rows: 624.78658218 269800
$data11 << END 362 rows: 240273.60124684 134057439.6
plot NaN notitle, $data10 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'frequency', $data11 using 1:2 with lines lw 1 lc rgb '#D55E00' title 'cap'
unset label; unset logscale y; set yrange [0:1911]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.4795; set bmargin at screen 0.4271; set key at screen 0.8469, screen 0.4821 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'as given: frequency of cluster little (compositor), MHz' at screen 0.1156, screen 0.4834 left font ',11'
$data12 << END 124 rows: 28398.75437239 28453.71217282 0 14105000
$data13 << END 242 rows: 107639.48227512 40974660
plot NaN notitle, $data12 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#F2BF99' title 'boost', $data13 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'frequency'
unset label; unset logscale y; set yrange [0:582.75]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.4132; set bmargin at screen 0.3783; set key at screen 0.8469, screen 0.4158 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'as given: power of the processor, mW' at screen 0.1156, screen 0.4171 left font ',11'
$data14 << END 120 rows: 26610.16647298 1261326.803
plot NaN notitle, $data14 using 1:2 with lines lw 1.5 lc rgb '#AA4488' title 'power, mean'
unset label; set logscale y; set yrange [0.1:10]; set ytics ('0.1' 0.1, '0.3' 0.3, '1' 1, '3' 3, '10' 10); set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.3643; set bmargin at screen 0.3207; set key at screen 0.8469, screen 0.3669 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'as given: scale of DOWN while it is in effect, and of UP' at screen 0.1156, screen 0.3682 left font ',11'
$data15 << END 362 rows: 240273.60124684 47877.657
plot NaN notitle, $data15 using 1:2 with lines lw 1 lc rgb '#009E73' title 'DOWN', keyentry with points pt 9 ps 0.6 lc rgb '#D55E00' title 'UP'
unset label; unset logscale y; set yrange [0:19.9999992]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.3067; set bmargin at screen 0.2500; set key at screen 0.8469, screen 0.3093 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label '--vs: time from the start of a frame to its queueing, ms' at screen 0.1156, screen 0.3106 left font ',11'
$data16 << END 60 rows: 6705.78672506 15205.33024
$data17 << END 2 rows: 11 50.0001
plot NaN notitle, $data16 using 1:2 with points pt 7 ps 0.3 lc rgb '#0072B2' title 'frame', $data17 using 1:2 with lines lw 1.5 lc rgb '#E69F00' title '1 refresh period'
unset label; unset logscale y; set yrange [0:2.3]; set ytics ('0' 0, '1' 1, '2' 2); set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.2360; set bmargin at screen 0.2055; set key at screen 0.8469, screen 0.2387 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label '--vs: frames in the queue' at screen 0.1156, screen 0.2400 left font ',11'
$data18 << END 242 rows: 107723.38451056 44226
plot NaN notitle, $data18 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'depth'
unset label; unset logscale y; set yrange [0:2940]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.1915; set bmargin at screen 0.1392; set key at screen 0.8469, screen 0.1942 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label '--vs: frequency of cluster big (application), MHz' at screen 0.1156, screen 0.1955 left font ',11'
$data19 << END 14 rows: 385.94582081 165000
plot NaN notitle, $data19 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'frequency'
unset label; unset logscale y; set yrange [0:1911]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.1252; set bmargin at screen 0.0729; set key at screen 0.8469, screen 0.1278 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label '--vs: frequency of cluster little (compositor), MHz' at screen 0.1156, screen 0.1291 left font ',11'
$data20 << END 61 rows: 6907.47020308 6935.13039896 0 3441620
$data21 << END 242 rows: 107639.48227512 40974660
plot NaN notitle, $data20 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#F2BF99' title 'boost', $data21 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'frequency'
unset label; set xtics ('3.0' 3, '3.1' 3.1, '3.2' 3.2, '3.3' 3.3, '3.4' 3.4, '3.5' 3.5, '3.6' 3.6, '3.7' 3.7, '3.8' 3.8, '3.9' 3.9, '4.0' 4); set xlabel 'time since the start of the run, s' font ',11'; unset logscale y; set yrange [0:582.75]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.0589; set bmargin at screen 0.0240; set key at screen 0.8469, screen 0.0615 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label '--vs: power of the processor, mW' at screen 0.1156, screen 0.0628 left font ',11'
$data22 << END 120 rows: 26610.16647298 1265380.135
plot NaN notitle, $data22 using 1:2 with lines lw 1.5 lc rgb '#AA4488' title 'power, mean'
unset label; unset multiplot
