#!/usr/bin/env bash
# Configures and builds Zettary into ./build (or $ZETTARY_BUILD_DIR).
set -euo pipefail
here="$(cd "$(dirname "$0")/.." && pwd)"
build="${ZETTARY_BUILD_DIR:-$here/build}"
cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" -j "$(nproc)"
