set encoding utf8
set terminal svg font 'sans,12' fontscale 1.15 size 1600,2292 background 'white' noenhanced
set multiplot
set tics nomirror font ',10'
set grid back lc rgb '#D0D0D0' lt 1
set border 3
set format x ''
set xrange [3:4]
set xtics ('' 3, '' 3.1, '' 3.2, '' 3.3, '' 3.4, '' 3.5, '' 3.6, '' 3.7, '' 3.8, '' 3.9, '' 4)
set label 'game60 on device' at screen 0.1156, screen 0.9895 left font ',15'
set label 'schedutil, 3 buffers, DOWN cap, UP governor, boost compositor, depth found' at screen 0.1156, screen 0.9812 left font ',13'
set label '--vs vendor.perf.pfar.down.enable=0' at screen 0.1156, screen 0.9729 left font ',11'
unset logscale y
set yrange [0:19.9999992]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.9577
set bmargin at screen 0.9010
set key at screen 0.8469, screen 0.9603 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'library off: time from the start of a frame to its queueing, ms' at screen 0.1156, screen 0.9616 left font ',11'
$data1 << END
3.46050972 10.0099
END
$data2 << END
END
plot NaN notitle, $data1 using 1:2 with points pt 7 ps 0.3 lc rgb '#0072B2' title 'frame', $data2 using 1:2 with lines lw 1.5 lc rgb '#E69F00' title '1 refresh period'
unset label
unset logscale y
set yrange [0:2.3]
set ytics ('0' 0, '1' 1, '2' 2)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.8870
set bmargin at screen 0.8565
set key at screen 0.8469, screen 0.8896 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'library off: frames in the queue' at screen 0.1156, screen 0.8909 left font ',11'
$data3 << END
3 2
3.20049987 1
3.4087657 2
3.61716652 1
3.82547895 2
END
plot NaN notitle, $data3 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'depth'
unset label
unset logscale y
set yrange [0:2940]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.8425
set bmargin at screen 0.7901
set key at screen 0.8469, screen 0.8451 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'library off: frequency of cluster big (application), MHz' at screen 0.1156, screen 0.8464 left font ',11'
$data4 << END
END
plot NaN notitle, $data4 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'frequency'
unset label
unset logscale y
set yrange [0:1911]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.7762
set bmargin at screen 0.7238
set key at screen 0.8469, screen 0.7788 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'library off: frequency of cluster little (compositor), MHz' at screen 0.1156, screen 0.7801 left font ',11'
$data5 << END
END
plot NaN notitle, $data5 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'frequency'
unset label
unset logscale y
set yrange [0:513.45]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.7099
set bmargin at screen 0.6750
set key at screen 0.8469, screen 0.7125 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'library off: power of the processor, mW' at screen 0.1156, screen 0.7138 left font ',11'
$data6 << END
3.03333333 132.834
3.44999998 145.625
3.86666663 192.169
END
plot NaN notitle, $data6 using 1:2 with lines lw 1.5 lc rgb '#AA4488' title 'power, mean'
unset label
unset logscale y
set yrange [0:19.9999992]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.6610
set bmargin at screen 0.6043
set key at screen 0.8469, screen 0.6636 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'as given: time from the start of a frame to its queueing, ms' at screen 0.1156, screen 0.6649 left font ',11'
$data7 << END
3.34360361 9.77041
END
$data8 << END
END
plot NaN notitle, $data7 using 1:2 with points pt 7 ps 0.3 lc rgb '#0072B2' title 'frame', $data8 using 1:2 with lines lw 1.5 lc rgb '#E69F00' title '1 refresh period'
unset label
unset logscale y
set yrange [0:2.3]
set ytics ('0' 0, '1' 1, '2' 2)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.5903
set bmargin at screen 0.5598
set key at screen 0.8469, screen 0.5929 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'as given: frames in the queue' at screen 0.1156, screen 0.5942 left font ',11'
$data9 << END
3.17550042 1
3.3838332 2
3.59176718 1
3.80049985 2
END
plot NaN notitle, $data9 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'depth'
unset label
unset logscale y
set yrange [0:2940]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.5458
set bmargin at screen 0.4935
set key at screen 0.8469, screen 0.5484 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'as given: frequency of cluster big (application), MHz' at screen 0.1156, screen 0.5497 left font ',11'
$data10 << END
END
$data11 << END
3.05079988 2074.8
3.18613946 2058
3.32365677 1853.6

3.46080972 2343.6
3.60079986 1923.6
3.73613943 2007.6
3.87397149 1806
END
plot NaN notitle, $data10 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'frequency', $data11 using 1:2 with lines lw 1 lc rgb '#D55E00' title 'cap'
unset label
unset logscale y
set yrange [0:1911]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.4795
set bmargin at screen 0.4271
set key at screen 0.8469, screen 0.4821 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'as given: frequency of cluster little (compositor), MHz' at screen 0.1156, screen 0.4834 left font ',11'
$data12 << END
3.34390361 3.35079987 0 1820
3.7528061 3.76018691 0 1820
END
$data13 << END
3.06746654 1820
3.26947279 960
3.48413319 1820
3.68613944 960
3.90079984 1820
END
plot NaN notitle, $data12 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#F2BF99' title 'boost', $data13 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'frequency'
unset label
unset logscale y
set yrange [0:582.75]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.4132
set bmargin at screen 0.3783
set key at screen 0.8469, screen 0.4158 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'as given: power of the processor, mW' at screen 0.1156, screen 0.4171 left font ',11'
$data14 << END
3.1 154.501
3.51666665 119.759
3.9333333 128.361
END
plot NaN notitle, $data14 using 1:2 with lines lw 1.5 lc rgb '#AA4488' title 'power, mean'
unset label
set logscale y
set yrange [0.1:10]
set ytics ('0.1' 0.1, '0.3' 0.3, '1' 1, '3' 3, '10' 10)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.3643
set bmargin at screen 0.3207
set key at screen 0.8469, screen 0.3669 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'as given: scale of DOWN while it is in effect, and of UP' at screen 0.1156, screen 0.3682 left font ',11'
$data15 << END
3.07559319 0.69
3.21746654 0.712

3.35280612 0.938
3.49454614 0.706
3.63413319 0.784
3.76947277 0.835
3.9068612 0.7
END
plot NaN notitle, $data15 using 1:2 with lines lw 1 lc rgb '#009E73' title 'DOWN', keyentry with points pt 9 ps 0.6 lc rgb '#D55E00' title 'UP'
unset label
unset logscale y
set yrange [0:19.9999992]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.3067
set bmargin at screen 0.2500
set key at screen 0.8469, screen 0.3093 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label '--vs: time from the start of a frame to its queueing, ms' at screen 0.1156, screen 0.3106 left font ',11'
$data16 << END
3.07529319 8.12665
3.90656121 6.06136
END
$data17 << END
END
plot NaN notitle, $data16 using 1:2 with points pt 7 ps 0.3 lc rgb '#0072B2' title 'frame', $data17 using 1:2 with lines lw 1.5 lc rgb '#E69F00' title '1 refresh period'
unset label
unset logscale y
set yrange [0:2.3]
set ytics ('0' 0, '1' 1, '2' 2)
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.2360
set bmargin at screen 0.2055
set key at screen 0.8469, screen 0.2387 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label '--vs: frames in the queue' at screen 0.1156, screen 0.2400 left font ',11'
$data18 << END
3.10987238 1
3.31716653 2
3.52272407 1
3.73383318 2
3.94153005 1
END
plot NaN notitle, $data18 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'depth'
unset label
unset logscale y
set yrange [0:2940]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.1915
set bmargin at screen 0.1392
set key at screen 0.8469, screen 0.1942 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label '--vs: frequency of cluster big (application), MHz' at screen 0.1156, screen 0.1955 left font ',11'
$data19 << END
END
plot NaN notitle, $data19 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'frequency'
unset label
unset logscale y
set yrange [0:1911]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.1252
set bmargin at screen 0.0729
set key at screen 0.8469, screen 0.1278 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label '--vs: frequency of cluster little (compositor), MHz' at screen 0.1156, screen 0.1291 left font ',11'
$data20 << END
3.73613943 3.75079985 0 1820
END
$data21 << END
3.11947279 1820
3.3341332 960
3.53613944 1820
3.75079985 960
3.95280609 1820
END
plot NaN notitle, $data20 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#F2BF99' title 'boost', $data21 using 1:2 with lines lw 1 lc rgb '#0072B2' title 'frequency'
unset label
set xtics ('3.0' 3, '3.1' 3.1, '3.2' 3.2, '3.3' 3.3, '3.4' 3.4, '3.5' 3.5, '3.6' 3.6, '3.7' 3.7, '3.8' 3.8, '3.9' 3.9, '4.0' 4)
set xlabel 'time since the start of the run, s' font ',11'
unset logscale y
set yrange [0:582.75]
set ytics autofreq
set lmargin at screen 0.1156
set rmargin at screen 0.8406
set tmargin at screen 0.0589
set bmargin at screen 0.0240
set key at screen 0.8469, screen 0.0615 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label '--vs: power of the processor, mW' at screen 0.1156, screen 0.0628 left font ',11'
$data22 << END
3.21666666 193.262
3.63333331 145.355
END
plot NaN notitle, $data22 using 1:2 with lines lw 1.5 lc rgb '#AA4488' title 'power, mean'
unset label
unset multiplot
