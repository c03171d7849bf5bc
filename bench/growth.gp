# Draws what bench-pace growth wrote into `folder`.
set terminal svg size 640,360 font "sans,12" background "white"
set key left top
set grid
set yrange [0:*]

set output folder."/pace-cards.svg"
set title "Input latency, cards polled on a line of 460800 baud"
set xlabel "polled cards"
set ylabel "ms"
set xrange [0:17]
plot folder."/cards.dat" using 1:($2/1000) with linespoints lw 2 pt 7 title "median", \
     "" using 1:($3/1000) with linespoints lw 2 pt 5 title "99th percentile"

set output folder."/pace-clients.svg"
set title "Command latency on a line of 460800 baud, clients connected"
set xlabel "clients: IO, and CAE, and MON"
set ylabel "ms"
set xrange [0.5:3.5]
set xtics 1
plot folder."/clients.dat" using 1:($2/1000) with linespoints lw 2 pt 7 title "median", \
     "" using 1:($3/1000) with linespoints lw 2 pt 5 title "99th percentile"

set output folder."/pace-queue.svg"
set title "Commands to one card, queued at once: all of them done"
set xlabel "commands"
set ylabel "ms"
set logscale xy
set xrange [1:10000]
set xtics auto
set yrange [0.1:*]
plot folder."/queue.dat" using 1:2 with linespoints lw 2 pt 7 title "measured", \
     x * 0.2 with lines dt 2 title "linear, 0.2 ms each"
