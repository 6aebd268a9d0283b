#!/usr/bin/env bash
# Checks of the sources beyond the tests, stage by stage. A stage is a function below, named check_<stage>.
set -euo pipefail
cd "$(dirname "$0")/.."

usage() {
  cat <<'TEXT'
Usage: scripts/check.sh STAGE...

Runs the stages in the order given and stops at the first that fails.

  clang       build everything by clang
  tidy        hold the plug-in's sources to .clang-tidy; wants a configured build/release
  windows     build the plug-in for Windows by MinGW-w64, and run the tests that need no host under Wine

Exit status: 0 when every stage passed, 1 when one failed, 2 for a wrong use.
TEXT
}

check_clang() {
  cmake -S . -B build/clang -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DORVOSKY_WERROR=ON
  cmake --build build/clang
}

check_tidy() {
  find plugin -name '*.cpp' -print0 | xargs -0 -n 1 -P "$(nproc)" \
    clang-tidy --quiet --warnings-as-errors='*' -p build/release
}

check_windows() { scripts/check_windows.sh; }

[ $# -gt 0 ] || { usage >&2; exit 2; }
case $1 in -h | --help) usage; exit 0 ;; esac
for stage in "$@"; do
  [ "$(type -t "check_$stage")" = function ] || { echo "There is no stage \"$stage\"." >&2; usage >&2; exit 2; }
done
for stage in "$@"; do
  echo "== $stage"
  # On a line of its own: in a condition, bash would go on after a command that failed.
  set +e
  ( set -e; "check_$stage" )
  status=$?
  set -e
  [ "$status" -eq 0 ] || { echo "The stage \"$stage\" failed." >&2; exit 1; }
done
