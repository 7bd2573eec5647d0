#!/usr/bin/env bash
# Prints the index of exports: each function with the header that declares it and the file that defines it.
# Fails when a name of module/BvUtil.def is not declared once and defined once.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

cat <<'HEAD'
# Exports {#exports}

Where each exported function is declared, with its contract, and where it is defined: in a file at the boundary of
its room, which checks the arguments and calls what does the work. The classes CBvIniFile and CBvMatFile are
defined in `files/ini_file.cpp` and `files/mat_file.cpp`.

| export | declared in | defined in |
|---|---|---|
HEAD
# The names stand in the list of exports before the classes, the decorated one behind its "=".
sed -n '/^EXPORTS/,/; CBvIniFile/s/^ \+\(".*" = \)\?\([A-Za-z][A-Za-z0-9_]*\)$/\2/p' module/BvUtil.def |
    LC_ALL=C sort -f | awk '
    function file_of(path) { sub(/^include\//, "", path); return path }
    FNR == 1 { file = FILENAME }
    file == "-" { names[++count] = $1; next }
    match($0, /BVUTIL_CALL [A-Za-z_0-9]+\(/) {
        name = substr($0, RSTART + 12, RLENGTH - 13)
        if (file ~ /\.h$/) {
            if (declared[name] != file_of(file)) declarations[name]++
            declared[name] = file_of(file)
        } else {
            defined[name] = file ":" FNR
            definitions[name]++
        }
    }
    END {
        for (i = 1; i <= count; ++i) {
            name = names[i]
            if (declarations[name] != 1 || definitions[name] != 1) {
                print "exports.sh: " name " is not declared once and defined once" >"/dev/stderr"
                failed = 1
            }
            print "| #" name " | " declared[name] " | `" defined[name] "` |"
        }
        exit failed
    }' - include/bvutil/*.h env/*.cpp files/*.cpp runtime/*.cpp calcgeom/*.cpp filterhost/*.cpp imaging/*.cpp
