# Pictures: a badge on a key colour, resized, drawn over a pattern, embossed and outlined; the demo's landscape
# made small and saved as JPEG.
echo
echo "== Pictures"
for painter in "badge badge.bmp pattern.bmp" "landscape landscape.bmp"; do
    set -- $painter
    (cd "$out" && "$root/cmake/run-wine.sh" "$root/build/dll/samples/$1.exe" "${@:2}")
done
bvutil image info landscape.bmp
bvutil image resize landscape.bmp landscape.small.jpg 240 160
bvutil image resize badge.bmp badge.large.bmp 320 320
bvutil image transparent badge.bmp pattern.bmp badge.on_pattern.bmp --key FF00FF --at 40 20
bvutil image emboss badge.bmp badge.embossed.bmp
bvutil image region badge.bmp badge.region.bmp --key FF00FF
bvutil image convert badge.on_pattern.bmp badge.on_pattern.tif
bvutil image base64 landscape.small.jpg landscape.small.txt
printf '\nlandscape.small.txt begins with %s...\n' "$(head -c 48 "$out/landscape.small.txt")"
printf 'Pictures are in build/demo:\n'
(cd "$out" && ls badge.*.bmp landscape.small.jpg)
