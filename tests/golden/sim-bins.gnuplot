set encoding utf8; set terminal svg font 'sans,12' fontscale 1.15 size 1600,1593 background 'white' noenhanced; set multiplot; set tics nomirror font ',10'; set grid back lc rgb '#D0D0D0' lt 1; set border 3; set format x ''; set xrange [3:23]; set xtics ('' 4, '' 6, '' 8, '' 10, '' 12, '' 14, '' 16, '' 18, '' 20, '' 22); set label 'spiky60 on device' at screen 0.1156, screen 0.9849 left font ',15'; set label 'fixed 40 %, 3 buffers, DOWN cap, UP governor, boost compositor, depth found' at screen 0.1156, screen 0.9730 left font ',13'; unset logscale y; set yrange [0:54.9999978]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.9510; set bmargin at screen 0.8694; set key at screen 0.8469, screen 0.9548 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'library off: time from the start of a frame to its queueing, ms' at screen 0.1156, screen 0.9567 left font ',11'
$data1 << END 1155 rows: 10921505.8528092 9482220.09325
$data2 << END 2 rows: 49 50.0001
$data3 << END 3 rows: 84.00484333 315
plot NaN notitle, $data1 using 1:2 with points pt 7 ps 0.3 lc rgb '#0072B2' title 'frame', $data2 using 1:2 with lines lw 1.5 lc rgb '#E69F00' title '1 refresh period', $data3 using 1:2 with points pt 9 ps 0.8 lc rgb '#D55E00' title '3 above 50 ms'
unset label; unset logscale y; set yrange [0:2.3]; set ytics ('0' 0, '1' 1, '2' 2); set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.8493; set bmargin at screen 0.8054; set key at screen 0.8469, screen 0.8531 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'library off: frames in the queue' at screen 0.1156, screen 0.8550 left font ',11'
$data4 << END 240 rows: 470753.3178972 473163.3178012 13218 56600
$data5 << END 480 rows: 1884723.2714928 126343.991979
plot NaN notitle, $data4 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#C6DFEF' title 'depth, min to max', $data5 using 1:2 with lines lw 1.5 lc rgb '#0072B2' title 'depth, mean'
unset label; unset logscale y; set yrange [0:2940]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.7853; set bmargin at screen 0.7100; set key at screen 0.8469, screen 0.7891 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'library off: frequency of cluster big (application), MHz' at screen 0.1156, screen 0.7910 left font ',11'
$data6 << END 240 rows: 470753.3178972 473163.3178012 40488000 40488000
$data7 << END 480 rows: 1884723.2714928 161616000
plot NaN notitle, $data6 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#C6DFEF' title 'frequency, min to max', $data7 using 1:2 with lines lw 1.5 lc rgb '#0072B2' title 'frequency, mean'
unset label; unset logscale y; set yrange [0:1911]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.6899; set bmargin at screen 0.6146; set key at screen 0.8469, screen 0.6937 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'library off: frequency of cluster little (compositor), MHz' at screen 0.1156, screen 0.6955 left font ',11'
$data8 << END 240 rows: 470753.3178972 473163.3178012 27763200 27763200
$data9 << END 480 rows: 1884723.2714928 110822400
plot NaN notitle, $data8 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#C6DFEF' title 'frequency, min to max', $data9 using 1:2 with lines lw 1.5 lc rgb '#0072B2' title 'frequency, mean'
unset label; unset logscale y; set yrange [0:334.95]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.5945; set bmargin at screen 0.5443; set key at screen 0.8469, screen 0.5982 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'library off: power of the processor, mW' at screen 0.1156, screen 0.6001 left font ',11'
$data10 << END 480 rows: 1884723.2714928 25770965.725
plot NaN notitle, $data10 using 1:2 with lines lw 1.5 lc rgb '#AA4488' title 'power, mean'
unset label; unset logscale y; set yrange [0:54.9999978]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.5242; set bmargin at screen 0.4426; set key at screen 0.8469, screen 0.5279 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'as given: time from the start of a frame to its queueing, ms' at screen 0.1156, screen 0.5298 left font ',11'
$data11 << END 1152 rows: 10862655.1777463 9337500.05422
$data12 << END 2 rows: 49 50.0001
$data13 << END 4 rows: 133.54763547 525
plot NaN notitle, $data11 using 1:2 with points pt 7 ps 0.3 lc rgb '#0072B2' title 'frame', $data12 using 1:2 with lines lw 1.5 lc rgb '#E69F00' title '1 refresh period', $data13 using 1:2 with points pt 9 ps 0.8 lc rgb '#D55E00' title '4 above 50 ms'
unset label; unset logscale y; set yrange [0:2.3]; set ytics ('0' 0, '1' 1, '2' 2); set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.4225; set bmargin at screen 0.3785; set key at screen 0.8469, screen 0.4262 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'as given: frames in the queue' at screen 0.1156, screen 0.4281 left font ',11'
$data14 << END 240 rows: 470753.3178972 473163.3178012 13029 56775
$data15 << END 480 rows: 1884723.2714928 127676.559552
plot NaN notitle, $data14 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#C6DFEF' title 'depth, min to max', $data15 using 1:2 with lines lw 1.5 lc rgb '#0072B2' title 'depth, mean'
unset label; unset logscale y; set yrange [0:2940]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.3584; set bmargin at screen 0.2831; set key at screen 0.8469, screen 0.3622 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'as given: frequency of cluster big (application), MHz' at screen 0.1156, screen 0.3641 left font ',11'
$data16 << END 240 rows: 470753.3178972 473163.3178012 39253600 44812000
$data17 << END 480 rows: 1884723.2714928 162715379.5
$data18 << END 469 rows: 1778818.52487496 253113762.883
plot NaN notitle, $data16 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#C6DFEF' title 'frequency, min to max', $data17 using 1:2 with lines lw 1.5 lc rgb '#0072B2' title 'frequency, mean', $data18 using 1:2 with lines lw 1.5 lc rgb '#D55E00' title 'cap, mean'
unset label; unset logscale y; set yrange [0:1911]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.2630; set bmargin at screen 0.1877; set key at screen 0.8469, screen 0.2668 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'as given: frequency of cluster little (compositor), MHz' at screen 0.1156, screen 0.2687 left font ',11'
$data19 << END 230 rows: 434476.65239561 436690.40230471 0 32211208.6836
$data20 << END 240 rows: 470753.3178972 473163.3178012 27763200 51724520
$data21 << END 480 rows: 1884723.2714928 174537497.2
plot NaN notitle, $data19 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#F2BF99' title 'boost, share of time', $data20 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#C6DFEF' title 'frequency, min to max', $data21 using 1:2 with lines lw 1.5 lc rgb '#0072B2' title 'frequency, mean'
unset label; unset logscale y; set yrange [0:1311.45]; set ytics autofreq; set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.1676; set bmargin at screen 0.1174; set key at screen 0.8469, screen 0.1714 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'as given: power of the processor, mW' at screen 0.1156, screen 0.1733 left font ',11'
$data22 << END 480 rows: 1884723.2714928 26428251.099
plot NaN notitle, $data22 using 1:2 with lines lw 1.5 lc rgb '#AA4488' title 'power, mean'
unset label; set xtics ('4' 4, '6' 6, '8' 8, '10' 10, '12' 12, '14' 14, '16' 16, '18' 18, '20' 20, '22' 22); set xlabel 'time since the start of the run, s' font ',11'; set logscale y; set yrange [0.1:10]; set ytics ('0.1' 0.1, '0.3' 0.3, '1' 1, '3' 3, '10' 10); set lmargin at screen 0.1156; set rmargin at screen 0.8406; set tmargin at screen 0.0973; set bmargin at screen 0.0345; set key at screen 0.8469, screen 0.1011 left top Left reverse samplen 1.5 spacing 1.2 font ',10'; set label 'as given: scale of DOWN while it is in effect, and of UP' at screen 0.1156, screen 0.1030 left font ',11'
$data23 << END 231 rows: 437547.40230007 439780.40220835 17791.437 25853.976
$data24 << END 469 rows: 1778818.52487496 90397.7681307
$data25 << END 38 rows: 11956.06890582 1787.981
plot NaN notitle, $data23 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#A6DCCB' title 'DOWN, min to max', $data24 using 1:2 with lines lw 1.5 lc rgb '#009E73' title 'DOWN, mean', $data25 using 1:2 with points pt 9 ps 0.6 lc rgb '#D55E00' title 'UP'
unset label; unset multiplot
