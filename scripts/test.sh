#!/usr/bin/env bash
# Installs what is needed, builds everything and runs the whole test suite.
set -euo pipefail
here="$(cd "$(dirname "$0")/.." && pwd)"
bash "$here/scripts/install-deps.sh"
bash "$here/scripts/build.sh"
build="${ZETTARY_BUILD_DIR:-$here/build}"
cd "$build"
ctest --output-on-failure -j "$(nproc)" "$@"
