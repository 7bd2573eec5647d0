#!/usr/bin/env bash
# Builds the committed state of the sources twice, in folders of different names, and compares what is handed out.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
commit=$(git -C "$root" rev-parse HEAD)
unset CMAKE_C_COMPILER_LAUNCHER CMAKE_CXX_COMPILER_LAUNCHER

for copy in first "another/second copy"; do
    mkdir -p "$work/$copy"
    git -C "$root" archive "$commit" | tar -x -C "$work/$copy"
    (cd "$work/$copy" && cmake --preset dll && cmake --build --preset dll -j "${JOBS:-$(nproc)}" --target products) >"$work/log" 2>&1 ||
        { tail -20 "$work/log"; exit 1; }
done
cd "$work/first/build/dll"
different=0
for file in BvUtil.{dll,debug,lib} libBvUtil.dll.a BvCalc.{dll,debug} bvutil.exe filters/*.8bf; do
    cmp "$file" "$work/another/second copy/build/dll/$file" && echo "$file: the same bytes" || different=1
done
exit "$different"
