#!/usr/bin/env python3
"""Writes the manual page of the program, in roff, from the help that the program gives: make_man.py PROGRAM VERSION FILE.

SOURCE_DATE_EPOCH, when set, is its date, in seconds.
"""
import os
import re
import subprocess
import sys
import time

program, version, file = sys.argv[1:]
date = time.strftime("%Y-%m-%d", time.gmtime(int(os.environ.get("SOURCE_DATE_EPOCH", time.time()))))


def help_of(*topic):
    return subprocess.run([program, "help", *topic], check=True, capture_output=True, text=True).stdout


def roff(text):
    """Text that stands as it is."""
    lines = text.replace("\\", "\\e").replace("-", "\\-").split("\n")
    return "\n".join("\\&" + line if line[:1] in (".", "'") else line for line in lines)


def block(text):
    return ".nf\n" + roff(text.strip("\n")) + "\n.fi\n"


whole = help_of()
names = re.findall(r"^  ([a-z]+) ", whole[whole.index("Subcommands:"):whole.index("Examples:")], re.M)
page = f""".TH ORVOSKY 1 "{date}" "orvosky {version}" "Orvo sky toolkit"
.SH NAME
orvosky \\- run, export, render and inspect the skies of Maya scenes
.SH SYNOPSIS
.B orvosky
.I SUBCOMMAND
.RI [ OPTION ]...
.SH DESCRIPTION
Opens Maya ASCII scenes (.ma) and MEL scripts that build scenes (.mel),
without Maya, and exports their skies into .atmos and .cdata files, draws them,
and tells what files hold.
The exit status is 0 when everything asked for is there and right, 1 when it is
not, and 2 for wrong usage.
.SH OVERVIEW
""" + block(whole)
for name in names:
    if name == "help":
        continue
    page += f".SH ORVOSKY {name.upper()}\n" + block(help_of(name))
page += """.SH SEE ALSO
The documents in
.IR share/doc/orvosky .
"""
with open(file, "w", encoding="utf-8") as out:
    out.write(page)
