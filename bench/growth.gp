# SPDX-License-Identifier: Apache-2.0
# Draws how the cost of listings grows with the number of reels. Run it in the project's folder: gnuplot bench/growth.gp
# A full line is the library's operation, a dotted one the bare loop of the same host calls.
set terminal svg size 720,440 font "sans-serif,12" background "#ffffff" name "growth"
set output "docs/pictures/growth.svg"
set logscale xy
set xlabel "reels"
set ylabel "milliseconds"
set format "%g"
set grid linetype 1 linecolor "#dddddd"
set border 0
set tics scale 0
set key outside right top Left reverse samplen 3

array colours[3] = ["#1b6ca8", "#b2572b", "#3b7a3b"]
data = "bench/growth.dat"
plot for [i=1:3] data index i-1 using 1:2 title columnheader(1) with lines linewidth 2 linecolor rgb colours[i], \
     for [i=1:3] data index i-1 using 1:3 notitle with lines linewidth 2 dashtype 3 linecolor rgb colours[i], \
     NaN title "bare loop of the host calls" with lines linewidth 2 dashtype 3 linecolor rgb "#555555"
