# Pictures resized, saved in other formats, and a badge with a transparent colour.
step "Pictures, resized and saved" \
    "The crisp landscape as a small JPEG for the web and as a TIFF for the printer; the office's badge, which is \
transparent where it has its key colour, in all the ways that a drawing needs it."
run badge badge.bmp pattern.bmp
picture small.png "For an index, 240 x 180" bvutil image resize crisp.png small.png 240 180
picture on_pattern.png "The badge over a pattern, without its key colour" \
    bvutil image transparent badge.bmp pattern.bmp on_pattern.png --key FF00FF --at 40 20
picture large.png "In double size" bvutil image resize badge.bmp large.png 320 320
picture embossed.png "As a disabled control shows it" bvutil image emboss badge.bmp embossed.png
picture region.png "The region that it covers, in rectangles" bvutil image region badge.bmp region.png --key FF00FF
run bvutil image convert small.png small.jpg
run bvutil image convert crisp.png crisp.tif
run bvutil image info crisp.tif
run bvutil image base64 small.jpg -o small.txt
files small.jpg crisp.tif small.txt
