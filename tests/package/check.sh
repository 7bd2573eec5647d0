#!/usr/bin/env bash
# Unpacks the package, builds programs with it alone, by the commands that its README.md shows, and runs them:
# its samples in C and C++ with gcc through CMake, a project of one's own, C with gcc by hand and through
# pkg-config, C with clang against BvUtil.lib.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unzip -q "$root"/build/BvUtil-*-win32.zip -d "$work/a folder"
package=$(echo "$work"/a\ folder/BvUtil-*)
runtime=$(dirname "$(i686-w64-mingw32-gcc-posix -print-libgcc-file-name)")

# The number-th block of a language in README.md.
shown() {
    awk -v open="\`\`\`$1" -v wanted="$2" '
        $0 == open { inside = ++seen == wanted; next }
        /^```/ { inside = 0 }
        inside' "$package/README.md" | sed "s|PACKAGE|\"\$package\"|g"
}
run_quietly() { "$@" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }; }

echo "== the samples, with gcc through CMake"
cd "$package"
run_quietly eval "$(shown sh 2)"
"$root/tests/shown/run.sh" "$root/tests/shown/samples.txt" "$package/build" "$package/bin"
for filter in auto_levels duotone unsharp_mask; do
    (cd "$package/build/filters" && "$root/cmake/run-wine.sh" "$package/bin/bvutil.exe" filter info $filter.8bf)
done

echo "== a project of one's own"
mkdir "$work/own"
cd "$work/own"
cp "$package/samples/c/log.c" program.c
cp "$package/bin/BvUtil.dll" .
eval "$(shown sh 1)"
"$root/cmake/run-wine.sh" ./program.exe "$package/samples/settings/site.env"
rm program.exe
{
    echo 'cmake_minimum_required(VERSION 3.25)'
    echo 'project(own LANGUAGES C)'
    echo 'add_executable(program program.c)'
    shown cmake 1
} >CMakeLists.txt
run_quietly cmake . -DCMAKE_SYSTEM_NAME=Windows -DCMAKE_C_COMPILER=i686-w64-mingw32-gcc \
    -DBvUtil_DIR="$package/lib/cmake/BvUtil"
run_quietly cmake --build .
"$root/cmake/run-wine.sh" ./program.exe "$package/samples/settings/site.env"

echo "== clang, with BvUtil.lib"
mkdir "$work/clang"
cp "$package/bin/BvUtil.dll" "$work/clang"
for sample in "$package"/samples/c/*.c; do
    clang-14 --target=i686-w64-mingw32 -Wall -Wextra -Werror -O2 "-I$package/include" "$sample" \
        "$package/lib/BvUtil.lib" -lgdi32 "-L$runtime" -o "$work/clang/$(basename "$sample" .c).exe"
done
"$root/tests/shown/run.sh" "$root/tests/shown/samples.txt" "$work/clang" "$package/build" "$package/bin"

echo "== gcc, through pkg-config"
export PKG_CONFIG_LIBDIR="$package/lib/pkgconfig"
eval "flags=($(pkg-config --cflags --libs BvUtil))"
i686-w64-mingw32-gcc "$package/samples/c/log.c" "${flags[@]}" -o program.exe
"$root/cmake/run-wine.sh" ./program.exe "$package/samples/settings/site.env"

echo "== symbols"
address=$(i686-w64-mingw32-nm --defined-only "$package/bin/BvUtil.debug" | sed -n 's/ T _env_open$//p')
i686-w64-mingw32-addr2line -e "$package/bin/BvUtil.dll" "$address" | tee "$work/log"
grep -q 'env/bvutil_env.cpp:[1-9]' "$work/log"

echo "== version"
reported=$("$root/cmake/run-wine.sh" "$package/bin/bvutil.exe" --version | tr -d '\r')
echo "$reported"
[ "$(basename "$package")" = "BvUtil-${reported#bvutil }" ]
