set encoding utf8
set terminal svg font 'sans,12' fontscale 1.15 size 1600,1593 background 'white' noenhanced
set multiplot
set tics nomirror font ',10'
set grid back lc rgb '#D0D0D0' lt 1
set border 3
set format x ''
set xrange [3:23]
set xtics ('' 4, '' 6, '' 8, '' 10, '' 12, '' 14, '' 16, '' 18, '' 20, '' 22)
set label 'game60 on device' at screen 0.1156, screen 0.9849 left font ',15'
set label 'schedutil, 3 buffers, DOWN cap, UP governor, boost compositor, depth found' at screen 0.1156, screen 0.9730 left font ',13'
unset logscale y
set yrange [0:21.5547948]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.9510
set bmargin at screen 0.8694
set key at screen 0.8469, screen 0.9548 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'library off: time from the start of a frame to its queueing, ms' at screen 0.1156, screen 0.9567 left font ',11'
$data1 << END 1200 rows: 11768093.6145242 5939543.792
$data2 << END 2 rows: 49 50.0001
plot NaN notitle, $data1 using 1:2 with points pt 7 ps 0.3 lc rgb '#0072B2' title 'frame', $data2 using 1:2 with lines lw 1.5 lc rgb '#E69F00' title '1 refresh period'
unset label
unset logscale y
set yrange [0:2.3]
set ytics ('0' 0, '1' 1, '2' 2)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.8493
set bmargin at screen 0.8054
set key at screen 0.8469, screen 0.8531 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'library off: frames in the queue' at screen 0.1156, screen 0.8550 left font ',11'
$data3 << END 240 rows: 470753.3178972 473163.3178012 28778 57840
$data4 << END 480 rows: 1884723.2714928 173779.93358
plot NaN notitle, $data3 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#C6DFEF' title 'depth, min to max', $data4 using 1:2 with lines lw 1.5 lc rgb '#0072B2' title 'depth, mean'
unset label
unset logscale y
set yrange [0:2940]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.7853
set bmargin at screen 0.7100
set key at screen 0.8469, screen 0.7891 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'library off: frequency of cluster big (application), MHz' at screen 0.1156, screen 0.7910 left font ',11'
$data5 << END 240 rows: 470753.3178972 473163.3178012 44727600 49773600
$data6 << END 480 rows: 1884723.2714928 189668364.8
plot NaN notitle, $data5 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#C6DFEF' title 'frequency, min to max', $data6 using 1:2 with lines lw 1.5 lc rgb '#0072B2' title 'frequency, mean'
unset label
unset logscale y
set yrange [0:1911]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.6899
set bmargin at screen 0.6146
set key at screen 0.8469, screen 0.6937 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'library off: frequency of cluster little (compositor), MHz' at screen 0.1156, screen 0.6955 left font ',11'
$data7 << END 240 rows: 470753.3178972 473163.3178012 27763200 27763200
$data8 << END 480 rows: 1884723.2714928 110822400
plot NaN notitle, $data7 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#C6DFEF' title 'frequency, min to max', $data8 using 1:2 with lines lw 1.5 lc rgb '#0072B2' title 'frequency, mean'
unset label
unset logscale y
set yrange [0:712.95]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.5945
set bmargin at screen 0.5443
set key at screen 0.8469, screen 0.5982 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'library off: power of the processor, mW' at screen 0.1156, screen 0.6001 left font ',11'
$data9 << END 480 rows: 1884723.2714928 21375545.424
plot NaN notitle, $data9 using 1:2 with lines lw 1.5 lc rgb '#AA4488' title 'power, mean'
unset label
unset logscale y
set yrange [0:21.5547948]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.5242
set bmargin at screen 0.4426
set key at screen 0.8469, screen 0.5279 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'as given: time from the start of a frame to its queueing, ms' at screen 0.1156, screen 0.5298 left font ',11'
$data10 << END 1200 rows: 11768099.2784247 5945207.72662
$data11 << END 2 rows: 49 50.0001
plot NaN notitle, $data10 using 1:2 with points pt 7 ps 0.3 lc rgb '#0072B2' title 'frame', $data11 using 1:2 with lines lw 1.5 lc rgb '#E69F00' title '1 refresh period'
unset label
unset logscale y
set yrange [0:2.3]
set ytics ('0' 0, '1' 1, '2' 2)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.4225
set bmargin at screen 0.3785
set key at screen 0.8469, screen 0.4262 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'as given: frames in the queue' at screen 0.1156, screen 0.4281 left font ',11'
$data12 << END 240 rows: 470753.3178972 473163.3178012 28778 57840
$data13 << END 480 rows: 1884723.2714928 173725.53254
plot NaN notitle, $data12 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#C6DFEF' title 'depth, min to max', $data13 using 1:2 with lines lw 1.5 lc rgb '#0072B2' title 'depth, mean'
unset label
unset logscale y
set yrange [0:2940]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.3584
set bmargin at screen 0.2831
set key at screen 0.8469, screen 0.3622 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'as given: frequency of cluster big (application), MHz' at screen 0.1156, screen 0.3641 left font ',11'
$data14 << END 240 rows: 470753.3178972 473163.3178012 44660000 49773600
$data15 << END 480 rows: 1884723.2714928 189381517.93
$data16 << END 480 rows: 1884723.2714928 233494890.56
plot NaN notitle, $data14 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#C6DFEF' title 'frequency, min to max', $data15 using 1:2 with lines lw 1.5 lc rgb '#0072B2' title 'frequency, mean', $data16 using 1:2 with lines lw 1.5 lc rgb '#D55E00' title 'cap, mean'
unset label
unset logscale y
set yrange [0:1911]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.2630
set bmargin at screen 0.1877
set key at screen 0.8469, screen 0.2668 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'as given: frequency of cluster little (compositor), MHz' at screen 0.1156, screen 0.2687 left font ',11'
$data17 << END 240 rows: 470753.3178972 473163.3178012 0 46252308.28
$data18 << END 240 rows: 470753.3178972 473163.3178012 27763200 52634400
$data19 << END 480 rows: 1884723.2714928 198063247.58
plot NaN notitle, $data17 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#F2BF99' title 'boost, share of time', $data18 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#C6DFEF' title 'frequency, min to max', $data19 using 1:2 with lines lw 1.5 lc rgb '#0072B2' title 'frequency, mean'
unset label
unset logscale y
set yrange [0:782.25]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.1676
set bmargin at screen 0.1174
set key at screen 0.8469, screen 0.1714 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'as given: power of the processor, mW' at screen 0.1156, screen 0.1733 left font ',11'
$data20 << END 480 rows: 1884723.2714928 21385091.934
plot NaN notitle, $data20 using 1:2 with lines lw 1.5 lc rgb '#AA4488' title 'power, mean'
unset label
set xtics ('4' 4, '6' 6, '8' 8, '10' 10, '12' 12, '14' 14, '16' 16, '18' 18, '20' 20, '22' 22)
set xlabel 'time since the start of the run, s' font ',11'
set logscale y
set yrange [0.1:10]
set ytics ('0.1' 0.1, '0.3' 0.3, '1' 1, '3' 3, '10' 10)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.0973
set bmargin at screen 0.0345
set key at screen 0.8469, screen 0.1011 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'as given: scale of DOWN while it is in effect, and of UP' at screen 0.1156, screen 0.1030 left font ',11'
$data21 << END 240 rows: 470753.3178972 473163.3178012 18167.247 24114.945
$data22 << END 480 rows: 1884723.2714928 83391.030763
$data23 << END 1 rows: 5.17009506 1.02
plot NaN notitle, $data21 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#A6DCCB' title 'DOWN, min to max', $data22 using 1:2 with lines lw 1.5 lc rgb '#009E73' title 'DOWN, mean', $data23 using 1:2 with points pt 9 ps 0.6 lc rgb '#D55E00' title 'UP'
unset label
unset multiplot
