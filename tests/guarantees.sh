#!/usr/bin/env bash
# Each test that docs/guarantees.md names exists, in a file that it names.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
wrong=0
while IFS=. read -r suite case; do
    file=$(grep -rlE "^TEST(_F|_P)?\($suite, $case\)" tests --include='*_test.cpp' | head -n 1 || true)
    if [ -z "$file" ] || ! grep -q "${file#tests/}" docs/guarantees.md; then
        echo "docs/guarantees.md names $suite.$case, which is in ${file:-no test}"
        wrong=1
    fi
done < <(grep -oE '`[A-Z][A-Za-z0-9]+\.[A-Z][A-Za-z0-9]+`' docs/guarantees.md | tr -d '\`' | grep -v '^Suite\.Case$' | sort -u)
exit $wrong
