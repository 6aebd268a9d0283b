#!/usr/bin/env python3
"""Compiles every source of a build folder for the compiler's messages alone; only precompiled headers are written.

Usage: check_syntax.py BUILD_FOLDER

The folder is one that CMake configured for clang with compile_commands.json. Prints what the compiler says of each
source that it refuses and answers 1; answers 0 when there is none. With ccache installed, what has not changed since
the last time, here or in another clone, is not compiled again.
"""
import concurrent.futures
import hashlib
import json
import os
import shlex
import shutil
import subprocess
import sys

LAUNCHER = "ccache " if shutil.which("ccache") else ""
# What several clones share counts from their tree; the sloppiness is what the cache asks for where there are precompiled
# headers.
ENVIRONMENT = {**os.environ, "CCACHE_BASEDIR": os.getcwd(), "CCACHE_NOHASHDIR": "1", "CCACHE_PCH_EXTSUM": "1",
               "CCACHE_SLOPPINESS": "pch_defines,time_macros,include_file_mtime,include_file_ctime"}


def portable(entry):
    """The command by paths that are the same in each clone, or the cache would find nothing of another."""
    tree = os.getcwd()
    return entry["command"].replace(tree + "/", os.path.relpath(tree, entry["directory"]) + "/")


def accepted(entry, command):
    """Whether the compiler takes a source; what it says is printed when it does not."""
    done = subprocess.run(command, shell=True, cwd=entry["directory"], env=ENVIRONMENT, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        print(f"{os.path.relpath(entry['file'])}:\n{done.stdout}", flush=True)
    return done.returncode == 0


def precompiled(entry):
    """Writes a precompiled header, and beside it a sum of what it was made of: it holds paths of its own clone, so the
    cache neither keeps it nor knows it again by its bytes."""
    header = os.path.splitext(entry["file"])[0] + ".pch"
    if not accepted(entry, f"{portable(entry)} -MD -MF {shlex.quote(header)}.d"):
        return False
    with open(header + ".d", encoding="utf-8") as file:
        parts = file.read().replace("\\\n", " ").partition(":")[2].split()
    digest = hashlib.sha256(portable(entry).encode())
    for part in parts:
        with open(os.path.join(entry["directory"], part), "rb") as file:
            digest.update(file.read())
    with open(header + ".sum", "w", encoding="utf-8") as file:
        file.write(digest.hexdigest())
    return True


def compiled(entry):
    return accepted(entry, f"{LAUNCHER}{portable(entry)} -fsyntax-only")


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
        if not all(list(workers.map(precompiled, headers))):
            return 1
        taken = list(workers.map(compiled, sources))
    print(f"{len(taken)} sources, {taken.count(False)} refused")
    return 0 if all(taken) else 1


if __name__ == "__main__":
    sys.exit(main())
