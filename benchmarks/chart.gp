# Draws the chart of docs/performance.md as an SVG on standard output. page.py first defines "places", the
# count of conversions, and $figures, a line for each point: place, conversion, library, its time divided
# by ours.
set terminal svg size 860,620 font "sans-serif,12" background "white"
set title "Time of other libraries, divided by the time of this library: 1920x1080, one core, cold"
set logscale x 2
set xrange [0.1:64]
set xtics ("1/8" 0.125, "1/4" 0.25, "half" 0.5, "same" 1, "2" 2, "4" 4, "8" 8, "16" 16, "32" 32, "64 times" 64)
set yrange [places - 0.3:-0.7]
set grid xtics ytics linecolor "#e2e5e9" linetype 1
set border 1 linecolor "#808890"
set tics nomirror scale 0 textcolor "black"
set key outside bottom center horizontal
set arrow from 1, graph 0 to 1, graph 1 nohead linewidth 2 linecolor "#303840"
point(library) = strcol(3) eq library ? column(4) : NaN
plot $figures using (point("memcpy")):1:ytic(2) with points pt 2 lc "#303840" title "memcpy of as many bytes", \
     $figures using (point("libyuv")):1 with points pt 7 lc "#2b6cb0" title "libyuv", \
     $figures using (point("libyuv planes")):1 with points pt 6 lc "#2b6cb0" title "libyuv, over planes", \
     $figures using (point("swscale")):1 with points pt 5 lc "#c05621" title "swscale", \
     $figures using (point("avcodec")):1 with points pt 4 lc "#c05621" title "avcodec and swscale", \
     $figures using (point("zimg")):1 with points pt 9 lc "#2f855a" title "zimg"
