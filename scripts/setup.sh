#!/usr/bin/env bash
# Installs what building, testing and running need on a fresh Debian 12 machine.
# Does nothing when everything is there already.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config
  clang libclang-rt-14-dev
  qt6-base-dev qt6-declarative-dev qt6-tools-dev libgl-dev
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  fonts-liberation fonts-dejavu-core fonts-wqy-microhei
  xvfb xauth x11-apps xdotool xclip
  poppler-utils
  cups
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
