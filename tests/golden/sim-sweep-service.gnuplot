set encoding utf8; set terminal svg font 'sans,12' fontscale 1.15 size 1600,900 background 'white' noenhanced; set title 'game60 on device: schedutil, 3 buffers, UP governor, depth left; mean and standard deviation over the seeds'."\n".'Below a frontier, a variant takes less energy than any operating point that is held without the library and misses no more vsyncs'; set key outside right top Left reverse spacing 1.4 font ',10'; set clip two; set grid lc rgb '#D0D0D0' lt 1; set tics nomirror; set border 3; set xrange [-0.1:5]; set xlabel 'vsyncs missed a minute'; set yrange [0.734644:1.1]; set ylabel 'energy of both clusters, share of library off'
$data0 << END 4 rows: 35 9.38887
$data1 << END 3 rows: 3000000000 1000000003.88887
$data2 << END 1 rows: 0 0.777774
$data3 << END 1 rows: 0 1
$data4 << END 1 rows: 0 0.996897
$data5 << END 1 rows: 0 0.996897
$data6 << END 1 rows: 0 0.996897
$data7 << END 1 rows: 0 0.948418
$data8 << END 1 rows: 0 0.948418
$data9 << END 1 rows: 0 0.948418
$data10 << END 1 rows: 0 0.834644
$data11 << END 1 rows: 0 0.834644
$data12 << END 1 rows: 0 0.834644
plot $data0 with filledcurves closed fc rgb '#E6E6E6' title 'a held point does as well', $data1 with lines lw 1.5 lc rgb '#000000' dt 2 title 'frontier of the held operating points', $data2 with points pt 1 ps 0.8 lc rgb '#000000' notitle, $data3 with points pt 3 ps 1.6 lc rgb '#000000' title 'library off', $data4 with points pt 7 ps 2.6 lc rgb '#0072B2' title 'DOWN cap, boost compositor', $data5 with points pt 5 ps 2.4 lc rgb '#0072B2' title 'DOWN cap, boost all', $data6 with points pt 9 ps 2.2 lc rgb '#0072B2' title 'DOWN cap, boost none', $data7 with points pt 7 ps 2 lc rgb '#D55E00' title 'DOWN governor, boost compositor', $data8 with points pt 5 ps 1.8 lc rgb '#D55E00' title 'DOWN governor, boost all', $data9 with points pt 9 ps 1.6 lc rgb '#D55E00' title 'DOWN governor, boost none', $data10 with points pt 7 ps 1.4 lc rgb '#009E73' title 'DOWN frame, boost compositor', $data11 with points pt 5 ps 1.2 lc rgb '#009E73' title 'DOWN frame, boost all', $data12 with points pt 9 ps 1 lc rgb '#009E73' title 'DOWN frame, boost none'

