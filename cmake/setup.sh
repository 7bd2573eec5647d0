#!/usr/bin/env bash
# Installs what a Debian 12 machine lacks to build and test BvUtil; does nothing when all is there.
# Usage: cmake/setup.sh [build|test|demo|docs|fuzz|coverage|dist]...   (default: build test)
set -euo pipefail

wanted_build=(cmake ninja-build g++-mingw-w64-i686-posix libcli11-dev llvm-14)
wanted_test=(wine wine32:i386 googletest g++ g++-multilib clang-format clang-14 lld-14 jq librsvg2-bin)
wanted_demo=(wine wine32:i386 jq librsvg2-bin)
wanted_docs=(doxygen)
wanted_dist=(wine wine32:i386 zip unzip clang-14 pkgconf)
wanted_coverage=(gcovr)
wanted_fuzz=(clang-14 libclang-rt-14-dev lld-14 llvm-14 g++-multilib)

[ $# -gt 0 ] || set -- build test
wanted=()
for group in "$@"; do
    case "$group" in
    build) wanted+=("${wanted_build[@]}") ;;
    test) wanted+=("${wanted_test[@]}") ;;
    demo) wanted+=("${wanted_demo[@]}") ;;
    fuzz) wanted+=("${wanted_fuzz[@]}") ;;
    docs) wanted+=("${wanted_docs[@]}") ;;
    dist) wanted+=("${wanted_dist[@]}") ;;
    coverage) wanted+=("${wanted_coverage[@]}") ;;
    *) echo "setup: no group '$group' (build, test, demo, docs, fuzz, coverage, dist)" >&2; exit 2 ;;
    esac
done

is_installed() {
    dpkg-query -W -f '${Status}\n' "$1" 2>/dev/null | grep -q '^install ok installed$'
}

missing=()
for package in "${wanted[@]}"; do
    is_installed "$package" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "setup: installing ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "setup: root rights are needed to install packages" >&2; exit 1; }
    as_root=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
apt() { "${as_root[@]}" apt-get -y -q "$@"; }

case " ${missing[*]} " in
*:i386\ *)
    if ! dpkg --print-foreign-architectures | grep -qx i386; then
        "${as_root[@]}" dpkg --add-architecture i386
    fi
    ;;
esac

# A part of the index that cannot be refreshed is no reason to stop: the rest is usually enough.
apt update || echo "setup: the package index was refreshed in part only"

release=$(. /etc/os-release && echo "${VERSION_CODENAME:-bookworm}")
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if apt install --no-install-recommends "${missing[@]}" >"$log" 2>&1; then
    echo "setup: done"
    exit 0
fi
# The two architectures' indexes can be out of step, and then no consistent set is found; the
# release's own suite has one.
echo "setup: retrying with the packages of $release itself"
if apt install --no-install-recommends --allow-downgrades -t "$release" "${missing[@]}" >"$log" 2>&1; then
    echo "setup: done"
    exit 0
fi
cat "$log" >&2
echo "setup: could not install ${missing[*]}" >&2
exit 1
