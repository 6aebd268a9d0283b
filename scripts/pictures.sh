#!/usr/bin/env bash
# Draws the pictures of the documents into docs/images: the gallery, the steps of the tutorial, the rows of docs/looks.md,
# whose tables it writes, too. Wants a built program; takes a minute.
set -euo pipefail
cd "$(dirname "$0")/.."

program=$PWD/build/release/bin/orvosky
images=$PWD/docs/images
export MAYA_PLUG_IN_PATH=$PWD/build/release/tests/plugin/standin/plug-ins
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

echo "== gallery"
for scene in examples/project/scenes/*.ma; do
  "$program" --quiet --project examples/project render "$scene" "$images/$(basename "$scene" .ma).png" --size 640x360 \
    --samples 4
done
"$program" new "$work/skies" >/dev/null
"$program" --quiet --project "$work/skies" render "$work/skies/scenes/sky.ma" "$images/valley.png" --size 640x360 --samples 4

echo "== tutorial"
step=0
inside=
: >"$work/skies/scripts/evening.mel"
while IFS= read -r line; do
  case $line in
    '```mel') inside=1 ;;
    '```')
      inside=
      step=$((step + 1))
      "$program" --quiet --project "$work/skies" render "$work/skies/scripts/evening.mel" "$images/tutorial-$step.png" \
        --size 480x270 --samples 4 --strict
      ;;
    *) [ -z "$inside" ] || printf '%s\n' "$line" >>"$work/skies/scripts/evening.mel" ;;
  esac
done <docs/tutorial.md

# row TITLE NODE.ATTR VALUE... : five small pictures, and their row in docs/looks.md
row() {
  local title=$1 plug=$2 name heads= marks= cells= value
  shift 2
  name=${plug//[^A-Za-z]/}
  for value in "$@"; do
    "$program" --quiet --project "$work/skies" render "$work/skies/scenes/sky.ma" "$images/look-$name-$value.png" --size 240x135 --samples 4 \
      --set "$plug=$value" ${extra[@]+"${extra[@]}"}
    heads+="| $value " marks+='|---' cells+="| ![](images/look-$name-$value.png) "
  done
  printf '## %s\n\n`%s`\n\n%s|\n%s|\n%s|\n\n' "$title" "${plug/Shape/}" "$heads" "$marks" "$cells" >>docs/looks.md
}

echo "== looks"
sed -i '/^## /,$d' docs/looks.md
extra=(--set cloudDomeShape.Enable=off --look -40,28)
row "Falloff of the halo" skyShape.sunDiskFalloff 2 6 14 30 50
row "Size of the sun's disk" skyShape.sunDiskSize 0 0.1 0.3 0.6 1
extra=(--set cloudDomeShape.Enable=off)
row "Height of the fog" hazeShape.fogHeight 5 20 40 100 250
extra=()
row "Coverage: how closely the clouds stand" cloudDomeShape.placementDensity 0.2 0.3 0.4 0.5 0.6
row "Curvature of the dome" cloudDomeShape.domeCurvature 3500 6000 10000 20000 60000
