#!/usr/bin/env bash
# Builds the plug-in for Windows and runs, under Wine, the tests that need no host. What it takes comes from Debian:
# the compiler and Wine as packages, the libraries as source packages that are built here for Windows. All of it lies in
# build/windows; a second run builds what has changed alone.
set -euo pipefail
cd "$(dirname "$0")/.."

out=$PWD/build/windows
libraries=(tinyxml glew highway googletest)

fail() { echo "Error: $*" >&2; exit 1; }

install_packages() {
  local missing=() as_root=() package
  for package in cmake ninja-build g++-mingw-w64-x86-64-posix wine wine64 dpkg-dev; do
    dpkg-query -W -f='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
  done
  ((${#missing[@]})) || return 0
  echo "Installing: ${missing[*]}"
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || fail "root or sudo is needed to install packages."
    as_root=(sudo)
  fi
  export DEBIAN_FRONTEND=noninteractive
  "${as_root[@]}" apt-get update -qq || true
  "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
    fail "these packages cannot be had: ${missing[*]}. Is there a network?"
}

# The sources of the release that this system was installed from, without a change to its own lists.
fetch_sources() {
  local unpacked="$out/sources/unpacked" lists="$out/sources/lists" entries="$out/sources/debian.sources"
  [ -f "$unpacked" ] && [ "$(cat "$unpacked")" = "${libraries[*]}" ] && return 0
  rm -rf "$out/sources"
  mkdir -p "$lists/partial"
  local given=(/etc/apt/sources.list.d/*.sources)
  if [ -e "${given[0]}" ]; then # an empty line after each: they are read as one file
    sed -s -e 's/^Types:.*/Types: deb-src/' -e '$G' "${given[@]}" >"$entries"
  else
    entries="$out/sources/debian.list"
    sed -n 's/^deb /deb-src /p' /etc/apt/sources.list >"$entries"
  fi
  local apt=(apt-get -qq -o "Dir::Etc::SourceList=$entries" -o Dir::Etc::SourceParts=- -o "Dir::State::Lists=$lists"
             -o APT::Sandbox::User=root)
  (
    cd "$out/sources"
    "${apt[@]}" update && "${apt[@]}" source "${libraries[@]}" >fetch.log 2>&1
  ) || fail "the source packages ${libraries[*]} cannot be had. Is there a network? See $out/sources/fetch.log."
  echo "${libraries[*]}" >"$unpacked"
}

build_libraries() {
  local project=cmake/windows_libraries built="$out/prefix/built"
  [ -f "$built" ] && [ "$built" -nt "$project/CMakeLists.txt" ] && [ "$built" -nt "$out/sources/unpacked" ] && return 0
  local launcher=()
  ! command -v ccache >/dev/null || launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
  cmake -S "$project" -B "$out/libraries" -G Ninja -Wno-dev -DCMAKE_BUILD_TYPE=Release "${launcher[@]}" \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/toolchains/mingw-w64.cmake" \
    -DCMAKE_INSTALL_PREFIX="$out/prefix" -DORVOSKY_SOURCES="$out/sources" >/dev/null
  cmake --build "$out/libraries" --target install >"$out/libraries/build.log" ||
    { tail -n 40 "$out/libraries/build.log" >&2; fail "the libraries did not build."; }
  touch "$built"
}

# A prefix of its own, without a display, with a file server's share that is a folder.
prepare_wine() {
  export WINEPREFIX="$out/wine" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" LC_ALL=C.UTF-8
  unset DISPLAY WAYLAND_DISPLAY
  trap 'wineserver -k 2>/dev/null || true' EXIT
  [ -f "$WINEPREFIX/system.reg" ] || wine wineboot --init >"$out/wineboot.log" 2>&1 ||
    { cat "$out/wineboot.log" >&2; fail "Wine does not start."; }
  mkdir -p "$WINEPREFIX/dosdevices/unc/orvo" "$out/share"
  ln -sfn "$out/share" "$WINEPREFIX/dosdevices/unc/orvo/share"
  export ORVOSKY_TEST_SHARE="//orvo/share"
}

mkdir -p "$out"
install_packages
fetch_sources
build_libraries
export ORVOSKY_WINDOWS_CHECK=1
[ -f "$out/build.ninja" ] || cmake --preset windows
cmake --build --preset windows
prepare_wine
ctest --preset windows
