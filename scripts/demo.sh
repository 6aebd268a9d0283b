#!/usr/bin/env bash
# Installs what is missing, builds, and exports and renders the example scene into build/demo.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
[ -f build/release/build.ninja ] || cmake --preset release
cmake --build --preset release --target orvosky_program orvosky

out=build/demo
mkdir -p "$out"
program=build/release/bin/orvosky
scene=examples/project/scenes/evening.ma
"$program" --project examples/project export "$scene" "$out/sky.atmos"
"$program" --project examples/project render "$scene" "$out/sky.png"

cat <<TEXT

Made from $scene:
  $out/sky.atmos  the sky as the game reads it
  $out/sky.png    the sky as the viewport shows it

Go on with:
  $program --project examples/project render $scene other.png --camera horizon --time 12
  $program --help
  scripts/test.sh
TEXT
