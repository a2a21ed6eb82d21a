set encoding utf8; set terminal svg font 'sans,12' fontscale 1.15 size 1600,900 background 'white' noenhanced; set title 'game60 on device: schedutil, DOWN cap, UP governor, boost compositor, depth left; mean and standard deviation over the seeds'."\n".'Below a frontier, a variant takes less energy than any operating point that is held without the library and misses no more vsyncs'; set key outside right top Left reverse spacing 1.4 font ',10'; set clip two; set grid lc rgb '#D0D0D0' lt 1; set tics nomirror; set border 3; set xrange [-5.64926:282.463]; set xlabel 'vsyncs missed a minute'; set yrange [0.834851:1.13477]; set ylabel 'energy of both clusters, share of library off'
$data0 << END 5 rows: 5000003780 1000000024.01612
$data1 << END 2 rows: 1080 5.09555
$data2 << END 3 rows: 3000000000 1000000003.82967
$data3 << END 1 rows: 0 0.765935
$data4 << END 3 rows: 3000000000 1000000003.81431
$data5 << END 1 rows: 0 0.762861
$data6 << END 1 rows: 90 1 127.279 0
$data7 << END 1 rows: 90 1
$data8 << END 1 rows: 90 1.0144 127.279 0.0203701
$data9 << END 1 rows: 90 1.0144
$data10 << END 1 rows: 90 1.0144 127.279 0.0203701
$data11 << END 1 rows: 90 1.0144
$data12 << END 1 rows: 0 1 0 0
$data13 << END 1 rows: 0 1
$data14 << END 1 rows: 0 0.998449 0 0.00219388
$data15 << END 1 rows: 0 0.998449
$data16 << END 1 rows: 0 1 0 0
$data17 << END 1 rows: 0 1
$data18 << END 1 rows: 0 1 0 0
$data19 << END 1 rows: 0 1
$data20 << END 1 rows: 0 0.938902 0 0.00405091
$data21 << END 1 rows: 0 0.938902
$data22 << END 1 rows: 0 1.00135 0 2.27281e-05
$data23 << END 1 rows: 0 1.00135
plot $data0 with lines lw 1.5 lc rgb '#0072B2' dt 2 title '2 buffers, frontier of the held operating points', $data1 with points pt 1 ps 0.8 lc rgb '#0072B2' notitle, $data2 with lines lw 1.5 lc rgb '#D55E00' dt 2 title '3 buffers, frontier of the held operating points', $data3 with points pt 1 ps 0.8 lc rgb '#D55E00' notitle, $data4 with lines lw 1.5 lc rgb '#009E73' dt 2 title '4 buffers, frontier of the held operating points', $data5 with points pt 1 ps 0.8 lc rgb '#009E73' notitle, $data6 with xyerrorbars pt 0 lc rgb '#0072B2' notitle, $data7 with points pt 3 ps 1.6 lc rgb '#0072B2' title '2 buffers, library off', $data8 with xyerrorbars pt 0 lc rgb '#0072B2' notitle, $data9 with points pt 7 ps 2.6 lc rgb '#0072B2' title '2 buffers, as given', $data10 with xyerrorbars pt 0 lc rgb '#0072B2' notitle, $data11 with points pt 6 ps 2.6 lc rgb '#0072B2' title '2 buffers, --vs', $data12 with xyerrorbars pt 0 lc rgb '#D55E00' notitle, $data13 with points pt 3 ps 1.6 lc rgb '#D55E00' title '3 buffers, library off', $data14 with xyerrorbars pt 0 lc rgb '#D55E00' notitle, $data15 with points pt 7 ps 2 lc rgb '#D55E00' title '3 buffers, as given', $data16 with xyerrorbars pt 0 lc rgb '#D55E00' notitle, $data17 with points pt 6 ps 2 lc rgb '#D55E00' title '3 buffers, --vs', $data18 with xyerrorbars pt 0 lc rgb '#009E73' notitle, $data19 with points pt 3 ps 1.6 lc rgb '#009E73' title '4 buffers, library off', $data20 with xyerrorbars pt 0 lc rgb '#009E73' notitle, $data21 with points pt 7 ps 1.4 lc rgb '#009E73' title '4 buffers, as given', $data22 with xyerrorbars pt 0 lc rgb '#009E73' notitle, $data23 with points pt 6 ps 1.4 lc rgb '#009E73' title '4 buffers, --vs'

