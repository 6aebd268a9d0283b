#!/usr/bin/env python3
"""Checks the names of tests: check_names.py TESTS_FOLDER TEST_PROGRAM...

A test's name is the same at every run and can be read: no parameter is listed as its bytes or its address. A class has
one definition among all tests, unless it lies in an unnamed namespace: two that share a name could be linked together.
Programs that are not built are passed over.
"""
import collections
import pathlib
import re
import subprocess
import sys


def unnamed_regions_removed(text):
    """The text without comments, texts and what stands in unnamed namespaces."""
    text = re.sub(r'R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|//[^\n]*', "", text, flags=re.S)
    out, at = "", 0
    for start in re.finditer(r"\bnamespace\s*\{", text):
        if start.start() < at:
            continue
        out += text[at : start.start()]
        depth, at = 1, start.end()
        while depth and at < len(text):
            depth += {"{": 1, "}": -1}.get(text[at], 0)
            at += 1
    return out + text[at:]


def doubled_classes(folder):
    places = collections.defaultdict(set)
    for file in sorted(folder.rglob("*.cpp")) + sorted(folder.rglob("*.h")):
        text = unnamed_regions_removed(file.read_text(errors="replace"))
        for match in re.finditer(r"^(?:class|struct) (\w+)[^;{]*\{|^TEST(?:_F|_P)?\((\w+, \w+)\)", text, re.M):
            places[match[1] or match[2]].add(str(file.relative_to(folder)))
    return [f"{name} is defined in {' and in '.join(sorted(files))}" for name, files in places.items() if len(files) > 1]


def unreadable_names(program):
    listed = subprocess.run([program, "--gtest_list_tests"], capture_output=True, text=True, errors="replace", check=True)
    suite, found = "", []
    for line in listed.stdout.splitlines():
        if not line.startswith(" "):
            suite = line.split()[0]
        elif "-byte object <" in line or re.search(r"\b0x[0-9a-f]{6,}", line):
            found.append(f"{program.name}: {suite}{line.split()[0]} has a parameter without a printer")
    return found


def main():
    folder, programs = pathlib.Path(sys.argv[1]), [pathlib.Path(p) for p in sys.argv[2:]]
    faults = doubled_classes(folder)
    for program in programs:
        if program.exists():
            faults += unreadable_names(program)
    print("\n".join(faults) or f"{len(programs)} programs, all names in order")
    return bool(faults)


sys.exit(main())
