#!/usr/bin/env bash
# Makes the reference, build/docs/html: from the headers, from docs/, and from where the exports are defined.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
rm -rf build/docs
mkdir -p build/docs
BVUTIL_VERSION=$(sed -n 's/^project(BvUtil VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
export BVUTIL_VERSION
docs/exports.sh >build/docs/exports.md
doxygen docs/Doxyfile
echo "build/docs/html/index.html: the reference"
