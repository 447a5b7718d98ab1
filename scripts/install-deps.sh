#!/usr/bin/env bash
# Installs every Debian package that building, running and testing Zettary needs.
# Idempotent and non-interactive; runs as root or through sudo.
set -euo pipefail

PACKAGES=(
  # toolchain
  build-essential cmake ninja-build pkg-config ccache git
  # Qt 6 and its plugins
  qt6-base-dev qt6-base-dev-tools libqt6opengl6-dev libgl-dev libglx-dev
  qt6-multimedia-dev qt6-connectivity-dev qt6-speech-dev qt6-image-formats-plugins
  qt6-qpa-plugins libqt6svg6 qt6-l10n-tools qt6-declarative-dev libxkbcommon-dev
  qt6-speech-speechd-plugin speech-dispatcher espeak-ng
  gstreamer1.0-plugins-base gstreamer1.0-plugins-good
  # libraries the core calls
  libsqlite3-dev libssl-dev libplist-dev libzip-dev libavahi-client-dev libicu-dev
  # look and fonts
  breeze-icon-theme fonts-liberation2 fonts-urw-base35 fonts-dejavu-core
  # tools the tests use to read our output back, and real peers
  libxml2-utils python3 bibtool curl zip unzip sqlite3 avahi-daemon avahi-utils iproute2 dbus
  # benchmarks
  wrk nginx-light
  # running the window without a display
  xvfb xauth
)

SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  SUDO="sudo"
fi

missing=()
for p in "${PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
