# Draws what tools/bench growth wrote into `folder`.
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

reset
set key left top
set grid
set yrange [0:*]

set output folder."/hub-cards.svg"
set title "Latency through the hub on a line of 460800 baud, all cards polled"
set xlabel "cards"
set ylabel "ms"
set xrange [0:17]
plot folder."/hub-cards.dat" using 1:($2/1000) with linespoints lw 2 pt 7 lc 1 title "command, WebSocket", \
     "" using 1:($3/1000) with linespoints lw 2 pt 7 lc 1 dt 2 title "command, direct", \
     "" using 1:($4/1000) with linespoints lw 2 pt 5 lc 2 title "input, WebSocket", \
     "" using 1:($5/1000) with linespoints lw 2 pt 5 lc 2 dt 2 title "input, direct"

set output folder."/hub-history.svg"
set key right top
set title "The API's answer for a span of a year of ten channels"
set xlabel "days asked for"
set ylabel "ms"
set logscale x
set xrange [0.7:500]
set xtics (1, 7, 31, 365)
plot folder."/hub-history.dat" using 1:($2/1000) with linespoints lw 2 pt 7 title "median", \
     "" using 1:($3/1000) with linespoints lw 2 pt 5 title "99th percentile"

# Time to the left, memory to the right.
set y2label "MB"
set ytics nomirror
set y2tics
set y2range [0:*]

set output folder."/hub-clients.svg"
set key left top
set title "An input's change on its way to the last client"
set xlabel "clients of the WebSocket"
set xrange [0.7:1500]
set xtics (1, 10, 30, 100, 300, 1000)
plot folder."/hub-clients.dat" using 1:($3/1000) with linespoints lw 2 pt 7 title "median", \
     "" using 1:($4/1000) with linespoints lw 2 pt 5 title "99th percentile", \
     "" using 1:($5/1000) with lines lw 2 dt 2 title "one client of the daemon", \
     "" using 1:($2*1.024e-3) axes x1y2 with linespoints lw 2 pt 9 lc 4 title "resident memory of the hub"

set output folder."/hub-boards.svg"
set title "Boards of 16 cards that come back to a broker within 1.5 s"
set xlabel "boards"
set ylabel "s"
unset logscale
set key right bottom
set xrange [0:210]
set xtics (10, 50, 100, 200)
plot folder."/hub-boards.dat" using 1:3 smooth unique with linespoints lw 2 pt 7 title "the hub knows all", \
     "" using 1:2 smooth unique with linespoints lw 2 pt 5 title "the boards have told all", \
     "" using 1:($4*1.024e-3) axes x1y2 smooth unique with linespoints lw 2 pt 9 lc 4 title "resident memory of the hub"
