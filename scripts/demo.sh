#!/usr/bin/env bash
# Installs what is missing, builds, and exports and renders the example scene into build/demo.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
[ -f build/release/build.ninja ] || cmake --preset release
cmake --build --preset release --target orvosky_program orvosky xeliLocator

out=build/demo
mkdir -p "$out"
program=build/release/bin/orvosky
scene=examples/project/scenes/cumulus.ma
# The scene's terrain is a node of another plug-in; the tests have a stand-in for it.
export MAYA_PLUG_IN_PATH=$PWD/build/release/tests/plugin/standin/plug-ins
"$program" --project examples/project export "$scene" "$out/sky.atmos"
"$program" inspect "$out/sky.atmos" > "$out/sky.txt"
"$program" --project examples/project render "$scene" "$out/sky.png"

cat <<TEXT

Made from $scene:
  $out/sky.atmos  the sky as the game reads it
  $out/sky.cdata  the sprites of its clouds, packed
  $out/sky.txt    what the two hold, checked against each other
  $out/sky.png    the sky as the viewport shows it

Go on with:
  $program --project examples/project render examples/project/scenes/dusk.ma dusk.png
  $program --help
  scripts/test.sh
TEXT
