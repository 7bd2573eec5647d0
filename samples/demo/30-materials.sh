# Profiles and materials: a drawing's values, a material with its shading constants, a data file of the other
# byte order, and the configuration that they are found with.
cp "$root"/samples/profiles/{zeichnung.ini,eiche.mat,punkte.dat} "$out"
mkdir -p "$out/Texturen"
touch "$out/Texturen/eiche.bmp"
printf '[Pfade]\r\nTexturen=Texturen\r\n' >"$out/mb.ini"
cp "$out/mb.ini" "$out/mb2.ini"
step "Materials and the drawing's profile" \
    "The drawing's own values are in a profile, and oak in a material file. Textures are found on the search \
path of the configuration; of mb.ini and mb2.ini the one with the number is taken."
run bvutil ini get zeichnung.ini Stifte fenster --as doubles
run bvutil ini set zeichnung.ini Blatt name Obergeschoss
run bvutil ini set zeichnung.ini Druck papier A1
run bvutil ini list zeichnung.ini
run bvutil fio info punkte.dat
run bvutil where
run texture Eiche.bmp
picture eiche.png "Oak, on a sphere" bvutil material show eiche.mat --preview eiche.png
files zeichnung.ini eiche.mat punkte.dat
