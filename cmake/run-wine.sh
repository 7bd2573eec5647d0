#!/usr/bin/env bash
# Runs a Windows program in the project's own Wine prefix, which is made on first use:
#   cmake/run-wine.sh PROGRAM [ARGUMENT...]     run a program
#   cmake/run-wine.sh --prefix                  only make the prefix
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=$root/build/wine WINEARCH=win32 WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'
export WINEPATH=$root/build/dll
export LC_ALL=C.UTF-8
unset DISPLAY

# A prefix made by several programs at once breaks: one makes it, the others wait.
if [ ! -e "$WINEPREFIX/.ready" ]; then
    mkdir -p "$root/build"
    (
        flock 9
        if [ ! -e "$WINEPREFIX/.ready" ]; then
            rm -rf "$WINEPREFIX"
            # Without a display, windows and message boxes still work under the null driver.
            wineboot -i >/dev/null 2>&1 9>&-
            wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f >/dev/null 2>&1 9>&-
            wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f >/dev/null 2>&1 9>&-
            # The desktop that was started with the prefix has the former driver still: it ends here, and
            # the next program starts one that can show boxes.
            wineserver -k 9>&- || true
            wineserver -w 9>&-
            touch "$WINEPREFIX/.ready"
        fi
    ) 9>"$root/build/wine.lock"
fi
[ "${1:-}" != --prefix ] || exit 0
# A server that ends with its last program refuses one that comes at that moment: it stays for some seconds.
wineserver -p10 </dev/null >/dev/null 2>&1 || true
# Wine's services and desktop outlive the program that happens to start them, and keep its error output open: who
# reads that from a pipe, as ctest does, would wait for them as well.
if [ -p /dev/stderr ]; then
    errors=$(mktemp)
    trap 'rm -f "$errors"' EXIT
    code=0
    wine "$@" 2>"$errors" || code=$?
    cat "$errors" >&2
    exit "$code"
fi
exec wine "$@"
