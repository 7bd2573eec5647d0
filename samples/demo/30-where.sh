# Program locations: of two configuration files in the current folder, the one with the number is taken.
printf '[Pfade]\r\nTexturen=C:\\Texturen\r\n' >"$out/mb.ini"
cp "$out/mb.ini" "$out/mb2.ini"
bvutil where
