#!/usr/bin/env python3
"""Compiles every source of a build folder for the compiler's messages alone; only precompiled headers are written.

Usage: check_syntax.py BUILD_FOLDER

The folder is one that CMake configured for clang with compile_commands.json. Prints what the compiler says of each
source that it refuses and answers 1; answers 0 when there is none. With ccache installed, what has not changed since
the last time in this folder is not compiled again.
"""
import concurrent.futures
import json
import os
import shutil
import subprocess
import sys

LAUNCHER = "ccache " if shutil.which("ccache") else ""
# The sloppiness is what the cache asks for where there are precompiled headers.
ENVIRONMENT = {**os.environ, "CCACHE_SLOPPINESS": "pch_defines,time_macros,include_file_mtime,include_file_ctime"}


def compiled(entry, more):
    """Whether the compiler takes a source; what it says is printed when it does not."""
    done = subprocess.run(LAUNCHER + entry["command"] + more, shell=True, cwd=entry["directory"], env=ENVIRONMENT,
                          check=False, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        print(f"{os.path.relpath(entry['file'])}:\n{done.stdout}", flush=True)
    return done.returncode == 0


def main():
    if len(sys.argv) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    with open(os.path.join(sys.argv[1], "compile_commands.json"), encoding="utf-8") as file:
        entries = json.load(file)
    headers = [entry for entry in entries if entry["file"].endswith("cmake_pch.hxx.cxx")]
    # What Qt's tools write is made by a build alone.
    sources = [entry for entry in entries if entry not in headers and os.path.exists(entry["file"])]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as workers:
        # A time of writing in them would make each a new one to the cache.
        if not all(list(workers.map(lambda entry: compiled(entry, " -Xclang -fno-pch-timestamp"), headers))):
            return 1
        taken = list(workers.map(lambda entry: compiled(entry, " -fsyntax-only"), sources))
    print(f"{len(taken)} sources, {taken.count(False)} refused")
    return 0 if all(taken) else 1


if __name__ == "__main__":
    sys.exit(main())
