#!/usr/bin/env bash
# Installs every Debian package the build, the tests and the program need.
# Idempotent and non-interactive: does nothing when all packages are present.
set -euo pipefail

PACKAGES=(
  build-essential cmake pkg-config ccache
  qt6-base-dev qt6-base-dev-tools libqt6svg6 breeze-icon-theme qt6-translations-l10n
  libgs-dev ghostscript
  abcm2ps abcmidi
  libfluidsynth-dev timgm6mb-soundfont fluidsynth
  xvfb xauth
  clang libclang-rt-14-dev hyperfine
  xdg-utils desktop-file-utils
)

missing=()
for p in "${PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "install-deps: installing ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "install-deps: run as root or install sudo" >&2; exit 1; }
  SUDO="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
