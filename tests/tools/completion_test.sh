#!/usr/bin/env bash
# bvutil's completion, loaded into this shell and asked as it asks when the tab key is pressed.
# Usage: completion_test.sh PATH-OF-BVUTIL.EXE
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
eval "$("$root/cmake/run-wine.sh" "$1" completion bash)"
complete -p bvutil bvutil.exe >/dev/null

failed=0
# expect WORDS TYPED...: what completes the last word typed
expect() {
    local wanted=$1
    shift
    COMP_WORDS=(bvutil "$@") COMP_CWORD=$#
    COMPREPLY=(nothing)
    _bvutil || true # no word matches
    [ "${COMPREPLY[*]}" = "$wanted" ] || {
        echo "bvutil $*: \"${COMPREPLY[*]}\" instead of \"$wanted\"" >&2
        failed=1
    }
}
expect "env" en
expect "show get list check set remove merge --help -h" env ""
expect "show" env sh
expect "" env show ""
expect "--json" env show site.env --j
expect "long longs" env get user.env view scale --as lon
expect "" env get user.env view scale --fallback ""
expect "keep" env merge a.env b.env --mode k
expect "--output" image convert a.bmp --o
expect "png" image resize a.bmp 1 2 -o b --format p
expect "bash" completion b
expect "show set" help env s
expect "env exit-codes" help e
expect "" calc ""
exit $failed
