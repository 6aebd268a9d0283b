#!/usr/bin/env python3
"""Compiles each of the API's headers alone and holds it to bringing in what its declarations name.

Usage: check_headers.py FOLDER WORK COMPILER...

FOLDER holds maya/*.h. A plug-in that includes one header may use every class that the header's signatures name, so
for each of them the size is asked for behind that one include. The sources that ask are written into the folder WORK,
where a COMPILER behind a compiler cache finds those of the last time.
"""
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys

folder, work, compiler = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3:]
work.mkdir(exist_ok=True)
headers = {path.stem: path for path in sorted((folder / "maya").glob("M*.h"))}
# The cache learns from the list of included files what a source depends on: to preprocess it for that takes as long as
# to compile it.
ENVIRONMENT = {**os.environ, "CCACHE_DEPEND": "1"}
# Headers that declare no class of their own name.
NO_CLASS = {"MApiNamespace", "MApiVersion", "MIOStream", "MIOStreamFwd", "MTypes"}


def named(path):
    code = re.sub(r"/\*.*?\*/", " ", path.read_text(), flags=re.S)
    code = re.sub(r"//.*|^\s*#.*|^\s*(class|struct) \w+;", " ", code, flags=re.M)
    words = set(re.findall(r"\bM(?:3d)?[A-Z]\w*", code)) | {path.stem}
    return sorted(word for word in words if word in headers and word not in NO_CLASS)


def failure(item):
    name, path = item
    classes = [] if name in NO_CLASS else named(path)
    (work / f"{name}.cpp").write_text(
        f"#include <maya/{name}.h>\n" + "".join(f"static_assert(sizeof({c}) > 0);\n" for c in classes))
    run = subprocess.run([*compiler, "-std=c++20", "-fsyntax-only", "-MD", "-MF", f"{name}.d", "-I", folder,
                          f"{name}.cpp"], cwd=work, env=ENVIRONMENT, check=False, capture_output=True, text=True)
    return f"maya/{name}.h: {run.stderr}" if run.returncode else ""


with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    failures = [text for text in pool.map(failure, headers.items()) if text]
print("\n".join(failures) or f"{len(headers)} headers stand alone.")
sys.exit(bool(failures) or len(headers) < 50)
