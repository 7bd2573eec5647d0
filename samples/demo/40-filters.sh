# The sample filters, one after the other, on a painted landscape.
cp "$root"/build/dll/filters/{auto_levels,unsharp_mask,duotone}.8bf "$out"
step "Pictures, filtered" \
    "A landscape, painted a little hazy. Three filter plug-ins make it clear, crisp, and a print in two inks."
run landscape landscape.bmp
run bvutil filter info unsharp_mask.8bf
picture landscape.png "As painted" bvutil image convert landscape.bmp landscape.png
picture clear.png "auto_levels: the haze is gone" bvutil filter apply auto_levels.8bf landscape.bmp clear.png
picture crisp.png "unsharp_mask: run, and run once more with the same settings" \
    UNSHARP_RADIUS=2 UNSHARP_AMOUNT=0.7 bvutil filter apply unsharp_mask.8bf clear.png crisp.png --again 1 --repeat-last
picture duotone.png "duotone: two inks" \
    DUOTONE_DARK=1b264f DUOTONE_LIGHT=fff1d6 bvutil filter apply duotone.8bf clear.png duotone.png
