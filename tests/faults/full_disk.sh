#!/usr/bin/env bash
# Every command that writes, with a disk that takes a kilobyte: the file stands as it was, nothing is left
# beside it, and the exit code says so. Run by ctest with the build folder.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
bvutil() { "$root/cmake/run-wine.sh" "$build/bvutil.exe" "$@"; }

{ echo "[S]"; for i in $(seq 200); do printf '  name%d =a text of some length\r\n' "$i"; done; } >a.env
cp a.env b.env
{ printf '[s]\r\n'; for i in $(seq 200); do printf 'name%d=a text of some length\r\n' "$i"; done; } >a.ini
printf '[Material]\r\nName=m\r\n[m]\r\nkdiffus=0.5\r\nkambient=0.5\r\n' >a.mat
for i in $(seq 100); do echo "$((i * 37 % 101)),$((i * 53 % 89))"; done >a.csv
{ printf 'BM\0\0\0\0\0\0\0\0\66\0\0\0\50\0\0\0\144\0\0\0\144\0\0\0\1\0\30\0'; head -c 24 /dev/zero; seq 5000 9999; seq 9999 -1 5000; } >in.bmp

# Wine's server must not start within the limits: a program that waits for points keeps it.
mkfifo points
bvutil triangulate - <points >/dev/null 2>&1 &
exec 9>points

failures=0
# expect FILE COMMAND...: the command must fail and leave the file.
expect() {
    local file=$1 code=0
    shift
    [ -e "$file" ] || echo "the only copy" >"$file"
    cp "$file" "$file.before"
    ( trap '' XFSZ; ulimit -f 1; bvutil "$@" 9>&- ) >out 2>err || code=$?
    if [ "$code" -ne 3 ] && [ "$code" -ne 4 ]; then echo "exit code $code: $*"; cat err; failures=1; fi
    cmp "$file" "$file.before" || { echo "changed by: $*"; failures=1; }
    rm "$file.before"
    if ls | grep -q '\.tmp$'; then echo "left behind by: $*"; ls; failures=1; rm -f ./*.tmp; fi
}

expect a.env env set a.env S name7 other
expect a.env env remove a.env S name7
expect a.env env merge a.env b.env --mode append
expect a.env env set a.env S name7 other --backup
expect a.ini ini set a.ini s name7 other
expect m.png material show a.mat --preview m.png
expect t.csv triangulate a.csv --csv t.csv
expect t.svg triangulate a.csv --svg t.svg
for format in bmp jpg gif tif png; do
    expect "o.$format" image convert in.bmp "o.$format"
done
expect in.bmp image convert in.bmp in.bmp
expect o.bmp image resize in.bmp o.bmp 300 300
expect o.txt image base64 in.bmp o.txt
expect o.bmp image emboss in.bmp o.bmp
expect o.bmp image transparent in.bmp in.bmp o.bmp
expect o.bmp image region in.bmp o.bmp
expect o.bmp filter apply "$build/filters/auto_levels.8bf" in.bmp o.bmp
exec 9>&-
wait || true
exit $failures
