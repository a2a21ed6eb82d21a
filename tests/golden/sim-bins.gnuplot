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
$data1 << END
3.47624025 9.07372
4.30870924 8.20941
5.14110063 7.2675
5.97427827 7.11184
6.80889036 8.39063
7.6436736 9.84057
8.47364423 6.4779
9.30966792 9.16829
10.1429748 9.1419
10.9760579 8.89168
11.8093893 8.88973
12.6418659 8.03309
13.4760032 8.8371
14.3084755 7.9761
15.1432383 9.40559
15.9749077 7.7417
16.8093305 8.83121
17.6408486 7.01595
18.4745822 7.41627
19.3066565 6.15723
20.1413612 7.52869
20.9767507 9.58483
21.8069267 6.42755
22.6412646 7.43214
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
set tmargin at screen 0.8493
set bmargin at screen 0.8054
set key at screen 0.8469, screen 0.8531 left top Left reverse samplen 1.5 spacing 1.2 font ',10'
set label 'library off: frames in the queue' at screen 0.1156, screen 0.8550 left font ',11'
$data3 << END
3.91666663 3.99999996 1 2
8.08333313 8.16666646 1 2
12.2499996 12.333333 1 2
16.4166661 16.4999995 1 2
20.5833326 20.666666 1 2
END
$data4 << END
3.8333333 1.51122
5.91666655 1.43661
7.9999998 1.4825
10.0833331 1.52336
12.1666663 1.47966
14.2499996 1.53446
16.3333328 1.53212
18.416666 1.47403
20.4999993 1.52279
22.5833325 1.48672
END
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
$data5 << END
5.16666658 5.24999991 1800 2200
9.33333308 9.41666641 1800 1800
13.4999996 13.5833329 1400 1800
17.6666661 17.7499994 1400 1800
21.8333326 21.9166659 1400 1400
END
$data6 << END
4.41666661 1800
6.49999986 1800
8.58333311 1797.6
10.6666664 1722.4
12.7499996 1402.4
14.8333329 1482.4
16.9166661 2117.6
18.9999994 1514.4
21.0833326 1402.4
END
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
$data7 << END
6.41666653 6.49999986 960 960
10.583333 10.6666664 960 960
14.7499995 14.8333329 960 960
18.916666 18.9999994 960 960
END
$data8 << END
5.08333325 960
7.1666665 960
9.24999975 960
11.333333 960
13.4166663 960
15.4999995 960
17.5833328 960
19.666666 960
21.7499992 960
END
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
$data9 << END
3.24999999 191.84
5.33333324 149.085
7.41666649 202.164
9.49999974 133.138
11.583333 162.601
13.6666662 179.464
15.7499995 221.597
17.8333327 243.07
19.916666 229.79
21.9999992 132.376
END
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
$data10 << END
3.22647775 9.31121
4.05718673 6.68689
4.88949987 5.66673
5.72433777 7.17133
6.55866127 8.16153
7.39267302 8.83998
8.22633386 9.16752
9.05912408 8.62444
9.89153343 7.70049
10.7236283 6.46211
11.5579084 7.40888
12.3895277 5.69486
13.2251978 8.03166
14.0622855 11.7861
14.8930587 9.22601
15.7250093 7.84328
16.5609304 10.4311
17.3900251 6.19246
18.2249993 7.83339
19.0617477 11.2485
19.8935184 9.68591
20.7250165 7.85066
21.5567182 6.21907
22.3905176 6.68512
END
$data11 << END
END
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
$data12 << END
6.83333318 6.91666651 1 2
10.9999997 11.083333 1 2
15.1666662 15.2499995 1 2
19.3333327 19.416666 1 2
END
$data13 << END
3.16666666 1.52347
5.24999991 1.5698
7.33333316 1.46784
9.41666641 1.56097
11.4999997 1.5428
13.5833329 1.46771
15.6666662 1.50169
17.7499994 1.48629
19.8333327 1.43811
21.9166659 1.50948
END
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
$data14 << END
3.91666663 3.99999996 1400 1800
8.08333313 8.16666646 1400 1800
12.2499996 12.333333 1400 1800
16.4166661 16.4999995 1400 1800
20.5833326 20.666666 1800 1800
END
$data15 << END
3.8333333 1800
5.91666655 1800
7.9999998 1400
10.0833331 1640
12.1666663 1400
14.2499996 1642.4
16.3333328 1800
18.416666 1597.6
20.4999993 1800
22.5833325 1400
END
$data16 << END
4.58333327 2149.48
6.66666652 2021.17
8.74999977 1870.23
10.833333 2147.57
12.9166663 1928.82
14.9999995 2032.96
17.0833328 1979.23
19.166666 2049.78
21.2499993 2171.86
END
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
$data17 << END
6.66666652 6.74999985 0 1600.92
10.833333 10.9166663 0 1600.92
14.9999995 15.0833328 0 1600.92
19.166666 19.2499993 0 1600.92
END
$data18 << END
3.16666666 3.24999999 960 1820
7.33333316 7.41666649 960 1820
11.4999997 11.583333 960 1820
15.6666662 15.7499995 960 1820
19.8333327 19.916666 960 1820
END
$data19 << END
3.41666665 1716.48
5.4999999 1716.48
7.58333315 1716.48
9.6666664 1716.48
11.7499996 1716.48
13.8333329 1716.48
15.9166661 1716.48
17.9999994 1716.48
20.0833326 1716.48
22.1666659 1716.48
END
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
$data20 << END
3.74999997 197.744
5.83333322 181.895
7.91666647 143.668
9.99999972 155.724
12.083333 136.957
14.1666662 209.401
16.2499995 178.175
18.3333327 198.662
20.416666 204.202
22.4999992 146.595
END
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
$data21 << END
4.83333326 4.91666659 0.551 0.957
8.99999976 9.08333309 0.671 0.856
13.1666663 13.2499996 0.671 0.948
17.3333328 17.4166661 0.638 0.838
21.4999993 21.5833326 0.578 0.951
END
$data22 << END
4.24999995 0.737839
6.3333332 0.716892
8.41666645 0.695211
10.4999997 0.739789
12.5833329 0.698363
14.6666662 0.726968
16.7499994 0.768743
18.8333327 0.759564
20.9166659 0.752817
END
$data23 << END
END
plot NaN notitle, $data21 using 1:3:1:2:3:4 with boxxyerror fs solid noborder fc rgb '#A6DCCB' title 'DOWN, min to max', $data22 using 1:2 with lines lw 1.5 lc rgb '#009E73' title 'DOWN, mean', $data23 using 1:2 with points pt 9 ps 0.6 lc rgb '#D55E00' title 'UP'
unset label
unset multiplot
