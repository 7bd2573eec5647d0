#!/usr/bin/env bash
# Runs the demo into a folder and looks at what it wrote:  tests/shown/demo.sh FOLDER
# Every picture, file and section that the page refers to is there, and no path of this machine.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
folder=$1
"$root/samples/demo.sh" --out "$folder" >"$folder.log" 2>&1 || { tail -n 20 "$folder.log"; exit 1; }

page=$folder/index.html failures=0
complain() {
    echo "$page: $1"
    failures=$((failures + 1))
}
while read -r target; do
    case $target in
    '#'*) grep -q "id=\"${target#'#'}\"" "$page" || complain "there is no section $target" ;;
    *[:/\\]*) complain "$target is not beside it" ;;
    *) [ -s "$folder/$target" ] || complain "there is no $target" ;;
    esac
done < <(grep -oE '(href|src)="[^"]*"' "$page" | sed 's/^[^"]*"//; s/"$//' | sort -u)
! grep -niE -e "$root|$folder|z:|<script" -e 'users\\[^.]' "$page" || complain "this tells of the machine"
[ "$failures" -eq 0 ]
