# usage: gnuplot -c soak.gnuplot TABLE PICTURE
set terminal pngcairo size 1000,900 font "DejaVu Sans,10"
set output ARG2
set multiplot layout 3,1 title "The program under ten clients"
set xlabel "seconds"
set grid
set key off
set yrange [0:*]
set ylabel "resident memory (MiB)"
plot ARG1 using 1:2 with lines
set ylabel "file descriptors and threads"
set key right bottom
plot ARG1 using 1:3 with lines title "file descriptors", ARG1 using 1:4 with lines title "threads"
set key off
set ylabel "requests"
plot ARG1 using 1:5 with lines
unset multiplot
