# Draws what house.py has sampled:
#   gnuplot -e "data='house.dat'; boards=3; picture='FILE'; title='...'" tests/house/house.gp
set terminal svg size 720,760 font "sans,12" background "white"
set output picture
set multiplot layout 4,1 title title
set grid
set key tmargin right horizontal
set xrange [0:*]
set lmargin 11
set format x ""

hub(n) = 6 + 4 * n
daemon(n) = 8 + 4 * n

set ylabel "MiB"
set yrange [0:*]
plot for [n=0:boards - 1] data using ($1/60):(column(hub(n))/1024) with lines lw 2 \
  title sprintf("hub %d", n + 1)

plot for [n=0:boards - 1] data using ($1/60):(column(daemon(n))/1024) with lines lw 2 \
  title sprintf("daemon %d", n + 1)

set ylabel "descriptors"
plot for [n=0:boards - 1] data using ($1/60):(column(hub(n) + 1)) with lines lw 2 \
  title sprintf("hub %d", n + 1), \
  for [n=0:boards - 1] data using ($1/60):(column(daemon(n) + 1)) with lines \
  title sprintf("daemon %d", n + 1)

set xlabel "minutes"
set format x "%g"
set ylabel "ms, median of 10 s"
set logscale y
set yrange [1:10000]
plot data using ($1/60):2 with lines lw 2 title "command", \
     data using ($1/60):3 with lines lw 2 title "over the broker", \
     data using ($1/60):5 with lines lw 2 title "key to WebSocket"
