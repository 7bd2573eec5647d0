# A terrain survey: triangulated, drawn as lines, and lit.
cp "$root/samples/terrain/survey.csv" "$out"
step "A survey, triangulated" \
    "4000 points of a valley with a river, a road and a levelled field. The triangles between them are a table \
and a drawing; with the heights they are the ground, lit from the north-west."
run bvutil triangulate survey.csv --svg survey.svg --csv triangles.csv
run terrain survey.csv terrain.bmp 800
picture survey.png "Points and triangles" rsvg-convert -w 800 -o survey.png survey.svg
picture terrain.png "The ground, lit" bvutil image convert terrain.bmp terrain.png
files survey.csv triangles.csv survey.svg
