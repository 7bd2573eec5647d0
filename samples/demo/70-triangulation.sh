# A terrain survey of 4000 points, triangulated into a picture and a table.
echo
echo "== A terrain survey, triangulated"
cp "$root/samples/terrain/survey.csv" "$out"
bvutil triangulate survey.csv --svg survey.svg --csv survey.triangles.csv
rsvg-convert -o "$out/survey.png" "$out/survey.svg"
echo "The picture is build/demo/survey.svg and survey.png"
