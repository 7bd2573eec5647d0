#!/usr/bin/env bash
# The main job on real input, as one story: told on the console, and as a page with its pictures in build/demo.
#   samples/demo.sh [--out FOLDER] [STEP...]
# Steps are the files of samples/demo, without ".sh"; a step may need what those before it have made.
set -euo pipefail
export LC_ALL=C.UTF-8
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
out=$root/build/demo
if [ "${1:-}" = --out ]; then
    out=$(realpath -m "$2")
    shift 2
fi
source "$root/samples/demo/run.sh"
source "$root/samples/demo/page.sh"

if [ $# -eq 0 ]; then
    set -- $(cd "$root/samples/demo" && ls [0-9]*.sh | sed 's/\.sh$//')
fi
mkdir -p "$out"
printed=$(mktemp)
trap 'rm -f "$printed"' EXIT
begin_page
for step; do
    source "$root/samples/demo/$step.sh"
done
end_page
printf '\nThe page is %s/index.html\n' "${out#"$root/"}"
