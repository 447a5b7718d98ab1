#!/usr/bin/env bash
# Installs what is needed, builds Zettary and starts it. Without a display the
# program runs on Qt's offscreen platform.
set -euo pipefail
here="$(cd "$(dirname "$0")/.." && pwd)"
bash "$here/scripts/install-deps.sh"
bash "$here/scripts/build.sh"
build="${ZETTARY_BUILD_DIR:-$here/build}"
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  export QT_QPA_PLATFORM=offscreen
fi
exec "$build/src/zettary" "$@"
