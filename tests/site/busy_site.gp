# Draws what busy_site wrote:
#   gnuplot -e "data='FILE'; picture='FILE'" tests/site/busy_site.gp
set terminal svg size 720,760 font "sans,12" background "white"
set output picture
set multiplot layout 4,1 title "qelm at a busy site, the cable pulled every 36 seconds"
set grid
set key tmargin right horizontal
set xrange [0:*]
set lmargin 11
set format x ""

set ylabel "MiB"
set yrange [0:*]
plot data using ($1/60):($2/1024) with lines lw 2 title "resident memory"

set ylabel ""
set yrange [0:16]
plot data using ($1/60):3 with lines lw 2 title "descriptors", \
     data using ($1/60):4 with lines lw 2 title "threads"

set ylabel "ms"
set logscale y
set yrange [1:10000]
plot data using ($1/60):($5 > 0 ? $5 : NaN) with lines lw 2 title "change to report, median of 5 s", \
     data using ($1/60):($6 > 0 ? $6 : NaN) with lines title "99th percentile"

set xlabel "minutes"
set format x "%g"
plot data using ($1/60):($7 > 0 ? $7 : NaN) with lines title "console, longest answer of 5 s"
