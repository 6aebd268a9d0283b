#!/usr/bin/env bash
# Unpacks the Debian package and tries what it holds, from a folder where no source is: try_package.sh FILE.deb
set -euo pipefail

package=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "Error: $*" >&2; exit 1; }

dpkg-deb -x "$package" "$work/root"
cd "$work"
root=$work/root/usr
for file in bin/orvosky lib/orvosky/orvosky.so lib/orvosky/liborvohost.so share/orvosky/presets/8_valley.ma \
  share/man/man1/orvosky.1 share/doc/orvosky/README.md share/doc/orvosky/schemas/atmos.xsd \
  share/bash-completion/completions/orvosky share/zsh/vendor-completions/_orvosky; do
  [ -s "$root/$file" ] || fail "the package lacks $file."
done
dpkg-deb -f "$package" Depends | grep -q libopenimageio || fail "the package does not depend on what its modules need."
PATH=$root/bin:$PATH
orvosky new skies
orvosky export skies/scenes/sky.ma sky.atmos --strict
orvosky inspect sky.atmos --strict --project skies --summary
orvosky render skies/scenes/sky.ma sky.exr --size 64x36 --strict
orvosky run -e 'file -import "'"$root"'/share/orvosky/examples/project/scenes/evening.ma"; print `ls -type mesh`;' | grep -q hills
grep -q 'orvosky render' "$root/share/man/man1/orvosky.1" || fail "the manual page does not tell of render."
[ -s sky.exr ] && [ -s sky.cdata ] || fail "files are missing."
if [ -e "$root/lib/orvosky/orvosky_window.so" ]; then
  # A sky of a preset, made and exported by hand on a screen of its own.
  mkdir by_hand
  cat >hands.sh <<'EOF'
orvosky --project by_hand edit &
window=$!
timeout 60 xdotool search --sync --onlyvisible --name 'Orvo sky' windowfocus
sleep 3
xdotool key ctrl+m
sleep 1
xdotool type --delay 20 "orvoskyNewFromPreset \"$1/share/orvosky/presets/3_dusk.ma\"; orvoskyExport \"by_hand.atmos\""
xdotool key Return
for ((i = 0; i < 300; ++i)); do [ -e by_hand.atmos ] && [ -e by_hand.cdata ] && break; sleep 0.1; done
kill $window
EOF
  XDG_CONFIG_HOME=$work/config xvfb-run -a bash hands.sh "$root"
  orvosky inspect by_hand.atmos --strict --project by_hand --summary
fi
echo "The package works."
