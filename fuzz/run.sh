#!/usr/bin/env bash
# Runs every fuzz target for a number of seconds each, two at a time: fuzz/run.sh SECONDS [TARGET...]
# Seeds come from fuzz/corpus/TARGET; what is found new goes to build/fuzz/corpus/TARGET.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
seconds=${1:-60}
shift || true
if [ $# -eq 0 ]; then
    set -- $(cd build/fuzz && ls fuzz_* | grep -v '\.' | sed 's/^fuzz_//')
fi
run_one() {
    target=$1 seconds=$2
    grown=build/fuzz/corpus/$target
    mkdir -p "$grown" build/fuzz/artifacts
    seeds=()
    [ -d "fuzz/corpus/$target" ] && seeds=("fuzz/corpus/$target")
    options=(-max_total_time="$seconds" -print_final_stats=1 -timeout=20 -rss_limit_mb=3000
        -artifact_prefix="build/fuzz/artifacts/$target-")
    [ -f "fuzz/$target.dict" ] && options+=("-dict=fuzz/$target.dict")
    if "build/fuzz/fuzz_$target" "${options[@]}" "$grown" "${seeds[@]}" >"build/fuzz/$target.log" 2>&1; then
        echo "fuzz $target: clean, $(sed -n 's/stat::number_of_executed_units: *//p' "build/fuzz/$target.log") runs in $seconds s"
    else
        echo "fuzz $target: FOUND SOMETHING, see build/fuzz/$target.log"
        tail -40 "build/fuzz/$target.log"
        return 1
    fi
}
export -f run_one
printf '%s\n' "$@" | xargs -P 2 -I{} bash -c 'run_one {} '"$seconds"
