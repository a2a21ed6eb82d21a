set encoding utf8
set terminal svg font 'sans,12' fontscale 1.15 size 1600,900 background 'white' noenhanced
set title 'game60 on device: schedutil, DOWN cap, UP governor, boost compositor, depth left; mean and standard deviation over the seeds'."\n".'Below a frontier, a variant takes less energy than any operating point that is held without the library and misses no more vsyncs'
set key outside right top Left reverse spacing 1.4 font ',10'
set clip two
set grid lc rgb '#D0D0D0' lt 1
set tics nomirror
set border 3
set xrange [-5.64926:282.463]
set xlabel 'vsyncs missed a minute'
set yrange [0.834851:1.13477]
set ylabel 'energy of both clusters, share of library off'
$data0 << END
0 1e+09
0 2.17229
540 2.17229
540 1.46163
1e+09 1.46163
END
$data1 << END
0 2.17229
540 1.46163
END
$data2 << END
0 1e+09
0 0.765935
1e+09 0.765935
END
$data3 << END
0 0.765935
END
$data4 << END
0 1e+09
0 0.762861
1e+09 0.762861
END
$data5 << END
0 0.762861
END
$data6 << END
90 1 127.279 0
END
$data7 << END
90 1
END
$data8 << END
90 1.0144 127.279 0.0203701
END
$data9 << END
90 1.0144
END
$data10 << END
90 1.0144 127.279 0.0203701
END
$data11 << END
90 1.0144
END
$data12 << END
0 1 0 0
END
$data13 << END
0 1
END
$data14 << END
0 0.998449 0 0.00219388
END
$data15 << END
0 0.998449
END
$data16 << END
0 1 0 0
END
$data17 << END
0 1
END
$data18 << END
0 1 0 0
END
$data19 << END
0 1
END
$data20 << END
0 0.938902 0 0.00405091
END
$data21 << END
0 0.938902
END
$data22 << END
0 1.00135 0 2.27281e-05
END
$data23 << END
0 1.00135
END
plot $data0 with lines lw 1.5 lc rgb '#0072B2' dt 2 title '2 buffers, frontier of the held operating points', $data1 with points pt 1 ps 0.8 lc rgb '#0072B2' notitle, $data2 with lines lw 1.5 lc rgb '#D55E00' dt 2 title '3 buffers, frontier of the held operating points', $data3 with points pt 1 ps 0.8 lc rgb '#D55E00' notitle, $data4 with lines lw 1.5 lc rgb '#009E73' dt 2 title '4 buffers, frontier of the held operating points', $data5 with points pt 1 ps 0.8 lc rgb '#009E73' notitle, $data6 with xyerrorbars pt 0 lc rgb '#0072B2' notitle, $data7 with points pt 3 ps 1.6 lc rgb '#0072B2' title '2 buffers, library off', $data8 with xyerrorbars pt 0 lc rgb '#0072B2' notitle, $data9 with points pt 7 ps 2.6 lc rgb '#0072B2' title '2 buffers, as given', $data10 with xyerrorbars pt 0 lc rgb '#0072B2' notitle, $data11 with points pt 6 ps 2.6 lc rgb '#0072B2' title '2 buffers, --vs', $data12 with xyerrorbars pt 0 lc rgb '#D55E00' notitle, $data13 with points pt 3 ps 1.6 lc rgb '#D55E00' title '3 buffers, library off', $data14 with xyerrorbars pt 0 lc rgb '#D55E00' notitle, $data15 with points pt 7 ps 2 lc rgb '#D55E00' title '3 buffers, as given', $data16 with xyerrorbars pt 0 lc rgb '#D55E00' notitle, $data17 with points pt 6 ps 2 lc rgb '#D55E00' title '3 buffers, --vs', $data18 with xyerrorbars pt 0 lc rgb '#009E73' notitle, $data19 with points pt 3 ps 1.6 lc rgb '#009E73' title '4 buffers, library off', $data20 with xyerrorbars pt 0 lc rgb '#009E73' notitle, $data21 with points pt 7 ps 1.4 lc rgb '#009E73' title '4 buffers, as given', $data22 with xyerrorbars pt 0 lc rgb '#009E73' notitle, $data23 with points pt 6 ps 1.4 lc rgb '#009E73' title '4 buffers, --vs'
