# Each sample filter applied to a picture: NAME.before.bmp and NAME.after.bmp.
filters=$root/build/dll/filters

# Copies a picture as the one before, and applies the filter to it.
apply_sample() {
    name=$1 picture=$2
    shift 2
    cp "$out/$picture" "$out/$name.before.bmp"
    bvutil filter apply "$name.8bf" "$name.before.bmp" "$name.after.bmp" "$@"
}

echo
echo "== Filter plug-ins on a picture"
(cd "$out" && "$root/cmake/run-wine.sh" "$root/build/dll/samples/landscape.exe" landscape.bmp)
for filter in "$filters"/*.8bf; do
    cp "$filter" "$out"
    bvutil filter info "$(basename "$filter")"
done
apply_sample auto_levels landscape.bmp
export UNSHARP_RADIUS=2 UNSHARP_AMOUNT=0.7
apply_sample unsharp_mask auto_levels.after.bmp --again 1 --repeat-last
export DUOTONE_DARK=1b264f DUOTONE_LIGHT=fff1d6 DUOTONE_PREVIEW=duotone.preview.bmp
apply_sample duotone auto_levels.after.bmp
printf '\nPictures are in build/demo:\n'
(cd "$out" && ls landscape.bmp ./*.before.bmp ./*.after.bmp duotone.preview.bmp)
