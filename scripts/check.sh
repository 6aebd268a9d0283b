#!/usr/bin/env bash
# Checks of the sources beyond the tests, stage by stage. A stage is a function below, named check_<stage>.
set -euo pipefail
cd "$(dirname "$0")/.."

usage() {
  cat <<'TEXT'
Usage: scripts/check.sh STAGE...

Runs the stages in the order given and stops at the first that fails. What a stage needs it installs.

  format      hold every source to .clang-format
  rooms       hold every include to the rooms that may know each other
  warnings    build everything by g++, with warnings as errors: the build that scripts/test.sh tests
  clang       compile everything by clang, several sources at a time, with warnings as errors; nothing is linked
  quick       build the rooms of the host that read what comes from outside with the address and undefined-behaviour
              sanitizers, and run their tests and fuzz targets
  sources     compile every source by itself and without precompiled headers, to see that it includes what it uses
  asan        build and run every test with these sanitizers
  tsan        the same with the thread sanitizer
  tidy        hold the plug-in's sources to .clang-tidy
  fuzz        run each fuzz target on all that it can think of, for FUZZ_SECONDS (600 when it is not set)
  faults      make every call to the system fail once, and look at what an export, a picture, a library and a scene
              then leave behind (strace)
  package     make the Debian package, and try the program that it installs from an empty folder
  module      build and install the plug-in as for Maya, against a folder laid out like a devkit, and export with it
  windows     build the plug-in for Windows by MinGW-w64, and run the tests that need no host under Wine
  all         all of them: what a release needs

Exit status: 0 when every stage passed, 1 when one failed, 2 for a wrong use.
TEXT
}

stages=(format rooms warnings clang sources asan tsan tidy fuzz faults package module windows)
# Rooms where a fault of memory is likely, and whose tests do not take long.
quick_tests=(base_tests mel_tests files_tests scene_tests command_tests)
quick_fuzz=(fuzz_scene fuzz_workspace fuzz_mel_parse fuzz_mel_run fuzz_inspect)

sources() { git ls-files -z '*.cpp' '*.h'; }

configured() {
  [ -f "build/$1/build.ninja" ] || cmake --preset "$1" "${@:2}"
}

check_format() {
  scripts/setup.sh clang-format
  sources | xargs -0 clang-format --dry-run -Werror
}

check_rooms() { python3 scripts/check_rooms.py; }

check_warnings() {
  scripts/setup.sh
  cmake --preset release -DORVOSKY_WERROR=ON
  cmake --build --preset release
}

# Holds every source to clang's warnings in the folder build/$1, which is configured with the options that follow.
clang_messages() {
  scripts/setup.sh clang
  cmake -S . -B "build/$1" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DORVOSKY_WERROR=ON "${@:2}"
  python3 scripts/check_syntax.py "build/$1"
}

check_clang() { clang_messages clang -DCMAKE_UNITY_BUILD=ON; }
check_sources() { clang_messages sources -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON; }

check_quick() {
  scripts/setup.sh
  configured asan
  cmake --build --preset asan --target "${quick_tests[@]}" "${quick_fuzz[@]/%/_smoke}"
  export UBSAN_OPTIONS=print_stacktrace=1 LSAN_OPTIONS=suppressions=$PWD/tests/support/lsan.supp:print_suppressions=0:use_tls=0
  export ASAN_OPTIONS=detect_leaks=1:suppressions=$PWD/tests/support/asan.supp
  # Program by program: a process for every test would take longer than the tests.
  printf '%s\n' "${quick_tests[@]}" | xargs -P "$(nproc)" -I {} env build/asan/bin/{} --gtest_brief=1
  ctest --preset asan -j "$(nproc)" -R "^fuzz\\.($(IFS='|'; echo "${quick_fuzz[*]}"))\$"
}

check_asan() { scripts/test.sh asan; }
check_tsan() { scripts/test.sh tsan; }

check_tidy() {
  scripts/setup.sh clang-tidy
  # Without precompiled headers: those of g++ are nothing to clang-tidy.
  cmake --preset release -B build/tidy -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON -DCMAKE_UNITY_BUILD=OFF
  find plugin -name '*.cpp' -not -name WindowsPath.cpp -print0 | xargs -0 -n 1 -P "$(nproc)" \
    clang-tidy --quiet --warnings-as-errors='*' -p build/tidy
}

check_fuzz() {
  scripts/setup.sh clang
  configured fuzz
  cmake --build --preset fuzz
  local seconds=${FUZZ_SECONDS:-600} target corpus
  mkdir -p build/fuzz/found build/fuzz/corpus
  for target in build/fuzz/bin/fuzz_*; do
    case $target in *_smoke) continue ;; esac
    corpus=$(sed -n "s/^orvo_fuzz[a-z_]*($(basename "$target") \([a-z]*\) .*/\1/p" tests/fuzz/CMakeLists.txt)
    echo "-- $(basename "$target"), $seconds s"
    mkdir -p "build/fuzz/corpus/$corpus"
    local leaks=1
    # OpenImageIO as it comes loses the text of an error now and then.
    [ "$(basename "$target")" != fuzz_image ] || leaks=0
    ASAN_OPTIONS=detect_leaks=$leaks "$target" -detect_leaks=$leaks -max_total_time="$seconds" -timeout=25 -rss_limit_mb=4096 -print_final_stats=1 \
      -artifact_prefix="build/fuzz/found/$(basename "$target")-" "build/fuzz/corpus/$corpus" "tests/fuzz/corpus/$corpus"
  done
}

check_faults() {
  scripts/setup.sh strace
  configured release
  cmake --build --preset release --target orvosky_program orvosky orvohost_images
  python3 scripts/inject_faults.py export library save
  python3 scripts/inject_faults.py --once render
}

check_package() {
  scripts/setup.sh
  configured release
  cmake --build --preset release
  rm -f build/release/*.deb
  (cd build/release && cpack -G DEB)
  scripts/try_package.sh build/release/*.deb
}

check_module() {
  scripts/setup.sh
  configured release
  cmake --build --preset release --target orvosky_program orvosky orvohost_images
  mkdir -p build/module
  scripts/try_module.sh build/release build/module
}

check_windows() { scripts/check_windows.sh; }

[ $# -gt 0 ] || { usage >&2; exit 2; }
case $1 in -h | --help) usage; exit 0 ;; all) set -- "${stages[@]}" ;; esac
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
