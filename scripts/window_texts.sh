#!/bin/sh
# Brings the table of the window's texts, apps/window/texts/orvosky_en.ts, in line with the sources. With a language
# ("window_texts.sh de") it also makes or updates orvosky_de.ts for translators. Wants lupdate (qt6-l10n-tools).
set -eu
cd "$(dirname "$0")/.."
lupdate=$(command -v lupdate || echo /usr/lib/qt6/bin/lupdate)
for language in en "$@"; do
  "$lupdate" -silent -no-obsolete -locations none -source-language en -target-language "$language" apps/window \
    -ts "apps/window/texts/orvosky_$language.ts"
done
