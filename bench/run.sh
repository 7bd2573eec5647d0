#!/usr/bin/env bash
# Runs the benchmarks, all or those named: bench/run.sh [NAME...]
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root/build/dll/bench"
if [ $# -eq 0 ]; then
    set -- $(ls bench_*.exe | sed 's/^bench_//; s/\.exe$//')
fi
for name in "$@"; do
    echo "== $name"
    "$root/cmake/run-wine.sh" "bench_$name.exe"
done
