#!/usr/bin/env bash
# Makes the presets of the window and their pictures anew, in plugin/presets. Wants a built build/release.
set -euo pipefail
cd "$(dirname "$0")/.."

program=$PWD/build/release/bin/orvosky
out=$PWD/plugin/presets
project=$(mktemp -d)
trap 'rm -rf "$project"' EXIT
echo 'workspace -fr "scene" "scenes";' > "$project/workspace.mel"
"$program" --project "$project" run "$out/makePresets.mel" "$out"
for preset in "$out"/*.ma; do
  "$program" --project "$project" render "$preset" "${preset%.ma}.jpg" --size 448x252
done
