#!/usr/bin/env bash
# Runs the commands that a document shows and compares what comes out with what it says.
#   tests/shown/run.sh DOCUMENT [PROGRAM-FOLDER...]
# They are the lines that begin with "$ ", each with its output, errors included, behind it, in a Markdown
# file's ```console blocks; in any other file all lines but those that begin with "#". "..." stands for any
# text. All of them run in one folder with the samples' files; programs are those of the folders given, else
# those of build/dll.
set -uo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
document=$(realpath "$1")
shift
[ $# -gt 0 ] || set -- "$root/build/dll" "$root/build/dll/samples"
folders=("$@")
product=$root/build/dll
for folder; do
    [ ! -e "$folder/bvutil.exe" ] || product=$folder
done

command_not_found_handle() {
    local folder
    for folder in "${folders[@]}"; do
        if [ -e "$folder/$1.exe" ]; then
            "$root/cmake/run-wine.sh" "$folder/$1.exe" "${@:2}"
            return
        fi
    done
    echo "$1: no such program"
    return 127
}
regsvr32() { "$root/cmake/run-wine.sh" regsvr32 /s "$@"; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prepare() {
    cp "$root"/samples/{settings/*.env,profiles/*,terrain/survey.csv} . &&
        cp "$product"/{filters/*.8bf,BvCalc.dll} . &&
        printf '[Pfade]\r\nTexturen=Texturen;Texturen\\alt\r\n' | tee mb.ini >mb2.ini &&
        mkdir -p Texturen/alt pictures/filtered pictures/small && touch Texturen/alt/eiche.bmp &&
        "$root/cmake/run-wine.sh" "$root/build/dll/samples/badge.exe" badge.bmp pattern.bmp &&
        "$root/cmake/run-wine.sh" "$root/build/dll/samples/landscape.exe" landscape.bmp &&
        cp badge.bmp landscape.bmp pictures
}
mkdir "$work/files"
cd "$work/files" && prepare || exit 1

failures=0 commands=0 status=0 command='' expected=''

# The text as a pattern in which only "..." is not literal.
pattern_of() { sed 's/[^[:alnum:] ]/\\&/g; s/\\\.\\\.\\\./*/g' <<<"$1"; }
tidied() { sed 's/\r$//; s/[[:blank:]]*$//' | sed -e :a -e '/^\n*$/{$d;N;ba' -e '}'; }

run_command() {
    [ -n "$command" ] || return 0
    (exit "$status") # what the command sees as $?
    eval "$command" >"$work/out" 2>&1 </dev/null
    status=$?
    local actual pattern
    actual=$(tidied <"$work/out")
    expected=$(tidied <<<"$expected")
    pattern=$(pattern_of "$expected")
    commands=$((commands + 1))
    # shellcheck disable=SC2053 # a pattern it is
    if [[ $actual != $pattern ]]; then
        failures=$((failures + 1))
        printf '%s:%d: $ %s\n' "$document" "$command_line" "$command"
        diff -u --label shown --label came <(echo "$expected") <(echo "$actual")
    fi
    command=''
}

case $document in
*.md) opening='```console' closing='```' inside=0 ;;
*) opening='' closing='#' inside=1 ;;
esac
number=0
while IFS= read -r line || [ -n "$line" ]; do
    number=$((number + 1))
    if [ -n "$opening" ] && [ "$line" = "$opening" ]; then
        inside=1
        continue
    elif [[ $line == "$closing"* ]]; then
        run_command
        [ -z "$opening" ] || inside=0
        continue
    fi
    [ "$inside" = 1 ] || continue
    if [[ $line == '$ '* ]]; then
        run_command
        command=${line#'$ '} expected='' command_line=$number
    elif [ -n "$command" ]; then
        expected+=$line$'\n'
    fi
done <"$document"
run_command
echo "$(basename "$document"): $commands commands, $failures with another result than shown"
[ "$failures" -eq 0 ] && [ "$commands" -gt 0 ]
