#!/usr/bin/env bash
# The main job on real input, step by step; pictures and files go to build/demo.
# samples/demo.sh [STEP...] runs only the named steps (the files of samples/demo without ".sh").
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
out=$root/build/demo
mkdir -p "$out"

# Shows a command of bvutil as a user would type it, and runs it in the demo's folder.
bvutil() {
    printf '\n$ bvutil'
    printf ' %q' "$@"
    printf '\n'
    run_bvutil "$@"
}
# The same without showing it.
run_bvutil() { (cd "$out" && "$root/cmake/run-wine.sh" "$root/build/dll/bvutil.exe" "$@"); }

if [ $# -eq 0 ]; then
    set -- $(cd "$root/samples/demo" && ls [0-9]*.sh | sed 's/\.sh$//')
fi
for step in "$@"; do
    source "$root/samples/demo/$step.sh"
done
