#!/usr/bin/env bash
# Installs the Debian packages that building and testing need, and those that are named, when any is missing.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config git
  libimath-dev libopenimageio-dev libfmt-dev libcli11-dev
  libegl-dev libgl-dev libglu1-mesa-dev libglew-dev libgl1-mesa-dri libegl1
  libedit-dev libembree-dev libassimp-dev libtinyxml-dev libpugixml-dev libre2-dev libhwy-dev nlohmann-json3-dev
  libgtest-dev libgmock-dev libbenchmark-dev python3
  qt6-base-dev libqt6opengl6-dev qt6-svg-dev qt6-tools-dev qt6-l10n-tools xvfb xauth xdotool
  libxml2-utils ccache locales zsh mandoc
  "$@"
)

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
done

if ((${#missing[@]})); then
  echo "Installing: ${missing[*]}"
  as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Error: root or sudo is needed to install packages." >&2; exit 1; }
    as_root=(sudo)
  fi
  export DEBIAN_FRONTEND=noninteractive
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# Tests of number formatting run under a locale that writes decimal commas.
if ! locale -a | grep -qi '^de_DE\.utf-\?8$'; then
  as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  "${as_root[@]}" localedef -i de_DE -f UTF-8 de_DE.UTF-8 || echo "The locale de_DE.UTF-8 is not available; its tests are skipped."
fi
