# Profiles: values of a drawing, a material with its shading constants, a data file of the other byte order.
cp "$root"/samples/profiles/{zeichnung.ini,eiche.mat,punkte.dat} "$out"

echo "== Profiles, materials and data files"
bvutil ini get zeichnung.ini Blatt breite --as double
bvutil ini get zeichnung.ini Stifte fenster --as doubles
bvutil ini set zeichnung.ini Blatt name Obergeschoss
bvutil ini set zeichnung.ini Druck papier A1
bvutil ini list zeichnung.ini
bvutil material show eiche.mat --preview eiche.png
bvutil fio info punkte.dat
