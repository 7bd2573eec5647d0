#!/usr/bin/env bash
# Checks that no code in a document is dead text:  tests/shown/blocks.sh DOCUMENT...
# Every block has a language. C, C++, settings and profiles stand, indented as they may be, in a file of
# samples/, which the tests build and run. Commands (console) are run by run.sh, those of the package (sh, cmake)
# by tests/package/check.sh.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

flat() { sed 's/\r$//; s/^[[:blank:]]*//; s/[[:blank:]]*$//' "$@"; }
samples=()
while IFS= read -r file; do
    case $file in
    *.ini | *.mat) samples+=("$(iconv -f cp1252 -t utf-8 "$file" | flat)") ;;
    *) samples+=("$(flat "$file")") ;;
    esac
done < <(find "$root/samples" -name '*.c' -o -name '*.cpp' -o -name '*.env' -o -name '*.ini' -o -name '*.mat')

stands_in_a_sample() {
    local sample block
    block=$(flat <<<"$1")
    for sample in "${samples[@]}"; do
        [[ $sample != *"$block"* ]] || return 0
    done
    return 1
}

failures=0
complain() {
    echo "$1"
    failures=$((failures + 1))
}

for document in "$@"; do
    number=0 language='' block='' before=''
    while IFS= read -r line || [ -n "$line" ]; do
        number=$((number + 1))
        if [ -n "$language" ] && [ "$line" = '```' ]; then
            case $language in
            c | cpp | env | ini | mat)
                stands_in_a_sample "$block" || complain "$document:$start: this $language is in no sample"
                ;;
            console | sh | cmake | ebnf | text) ;;
            *) complain "$document:$start: what language is \"$language\"?" ;;
            esac
            language=''
        elif [ -n "$language" ]; then
            block+=$line$'\n'
        elif [[ $line == '```'* ]]; then
            language=${line#'```'} block='' start=$number
            [ -n "$language" ] || { complain "$document:$start: a block without a language" && language=text; }
        elif [[ $line == '    '* && -z $before ]]; then
            complain "$document:$number: an indented block; put it between fences"
        fi
        before=$line
    done <"$document"
done
[ "$failures" -eq 0 ]
