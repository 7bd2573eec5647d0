#!/usr/bin/env bash
# Packs what build/dll and build/docs hold into build/BvUtil-VERSION-win32.zip. The files have the time of the
# commit, and stand in the order of their names: the same state of the sources gives the same bytes.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
version=$(sed -n 's/^project(BvUtil VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
name=BvUtil-$version
stage=build/stage
zip=$PWD/build/$name-win32.zip

rm -rf "$stage" build/BvUtil-*-win32.zip
cmake --install build/dll --prefix "$stage/$name" >/dev/null
time=$(git log -1 --format=%ct 2>/dev/null || echo 315532800)
find "$stage" -exec touch -h -d "@$time" {} +
cd "$stage"
find "$name" -type f | LC_ALL=C sort | TZ=UTC zip -q -X -9 -@ "$zip"
echo "build/$name-win32.zip: $(find "$name" -type f | wc -l) files, $(stat -c %s "$zip") bytes"
