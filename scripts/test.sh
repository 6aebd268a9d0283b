#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test. With a preset's name (debug, asan, tsan) it does so for that
# kind of build; the default is release.
set -euo pipefail
cd "$(dirname "$0")/.."

preset="${1:-release}"
scripts/setup.sh
[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset" -j "$(nproc)"
