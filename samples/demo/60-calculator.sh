# The calculator component, registered in the project's own Wine prefix.
printf '\n$ regsvr32 BvCalc.dll\n'
"$root/cmake/run-wine.sh" regsvr32 /s "Z:$root/build/dll/BvCalc.dll"
bvutil calc '1,5 + 2^10 / 3' 'w = 2.5; w * sin(30)' 'ans / 4'
bvutil calc --form fraction --digits 16 '68.2 / 25.4' 'sqrt(2)'
bvutil calc --form fixed --digits 2 --comma '199.99 * 1.19'
bvutil calc --angles radians --form scientific --digits 6 'atan(1e-3)'
bvutil calc '(3 + 4) / (2 - 2)' || echo "exit code $?"
