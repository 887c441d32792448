# gnuplot -e "data='DIR'; images='DIR'" plots.gp
set terminal svg size 720,420 font "sans-serif,13" background "white"
set key below autotitle columnhead
set rmargin 6
set grid
set datafile separator "\t"
set style line 1 lc rgb "#1b6ca8" lw 2 pt 7
set style line 2 lc rgb "#c0392b" lw 2 pt 5
set style line 3 lc rgb "#2e8b57" lw 2 pt 9
set style line 4 lc rgb "#7f7f7f" lw 2 pt 11

set output images."/performance-small.svg"
set title "Small commands"
set ylabel "thousand replies a second"
set style data histogram
set style histogram clustered gap 1
set style fill solid
plot for [i=2:5] data."/small.dat" using i:xtic(1) ls i-1

set style data linespoints
set output images."/performance-images.svg"
set title "Images"
set logscale xy
set xlabel "KiB of base64"
set ylabel "MB/s"
set xtics ("64" 64, "1 Mi" 1024, "5 Mi" 5120, "20 Mi" 20480)
plot for [i=2:5] data."/images.dat" using 1:i ls i-1

set output images."/performance-points.svg"
set title "GetPointer"
set xlabel "points"
set ylabel "ms"
set xtics ("1,000" 1000, "10,000" 10000, "100,000" 100000, "1,000,000" 1000000)
plot for [i=2:4] data."/points.dat" using 1:i ls i-1

set output images."/performance-push.svg"
set title "A picture of 200 KiB to all clients"
set xlabel "clients"
set ylabel "ms until the last has it"
set xtics ("1" 1, "20" 20, "200" 200)
plot for [i=2:4] data."/push.dat" using 1:i ls i-1
