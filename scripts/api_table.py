#!/usr/bin/env python3
"""Says, class by class, what of the API's documented members the host declares, and why the others are left out.

Usage: scripts/api_table.py [--check]

Writes the table into docs/host.md; with --check it only tells whether the table there is current, and fails when it is
not, when a header declares a member that is not documented, or when one is left out without a reason in
docs/api-left-out.txt. The documented members are listed in docs/api-names.txt:
their names with the number of their overloads, without constructors, type() and className(), those of base classes with
the base alone.
"""
import collections
import fnmatch
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
HEADERS = ROOT / "host/include/maya"
DOCUMENT = ROOT / "docs/host.md"
BEGIN, END = "<!-- The table of the API: scripts/api_table.py -->", "<!-- End of the table of the API -->"
# Members of the shared bases of arrays and of what a macro declares.
ARRAY = "set setLength length remove insert append copy clear setSizeIncrement sizeIncrement operator[] operator[]".split()
LEFT_OUT = {"className", "type"}
# Declared beyond the list: what every array has, what a base class documents, and two that the list forgets.
BEYOND = set("""MBoundingBox::clear MDagPathArray::get MDoubleArray::set MFloatArray::set MFloatVector::operator*=
MFnDagNode::setObject MFnMesh::setObject MFnTransform::setObject MImage::operator= MPlug::operator!=
MPxCommand::clearResult MStringArray::copy MStringArray::operator[] MVector::length MVector::normal
MVector::operator*= MVector::operator* MFloatVector::operator*""".split())


def documented():
    classes = {}
    for line in (ROOT / "docs/api-names.txt").read_text().splitlines():
        if line.startswith("#"):
            continue
        name, _, members = line.partition(":")
        counts = {}
        for word in members.split():
            member, _, count = word.partition("*") if re.search(r"\w\*\d+$|\]\*\d+$|[=!<>+/^&|)-]\*\d+$", word) else (word, "", "")
            if word.startswith("operator*"):
                member, count = re.fullmatch(r"(operator\*=?|operator\*)(?:\*(\d+))?", word).groups()
            counts[member] = int(count or 1)
        classes[name] = counts
    return classes


def bodies(text):
    """The classes of a header with their bases and the text between their braces."""
    for match in re.finditer(r"class \w+_EXPORT (\w+)(?: final)?\s*(?::([^{;]*))?\{", text):
        depth, at = 1, match.end()
        while depth:
            depth += {"{": 1, "}": -1}.get(text[at], 0)
            at += 1
        yield match.group(1), match.group(2) or "", text[match.end():at - 1]


def declared_members(name, bases, body, known):
    counts = collections.Counter(ARRAY) if "ValueArray" in bases else collections.Counter()
    flat, depth = "", 0  # without the bodies of inline functions and enumerations
    for character in body:
        depth -= character == "}"
        if depth == 0:
            flat += ";" if character == "}" else character
        depth += character == "{"
    access = "private"
    for piece in re.split(r"\b(public|private|protected)\s*:(?!:)", flat):
        if piece in ("public", "private", "protected"):
            access = piece
            continue
        if access == "private":
            continue
        for line in piece.split(";"):
            line = re.sub(r"\bORVO_DECLARE_FN\(\w+\)|\bfriend\b.*", "", line, flags=re.S).strip()
            if re.match(r"(typedef|using|enum|class|struct|template)\b", line):
                continue
            found = re.search(r"(operator\s*\(\s*\)|operator\s+[\w:]+|operator\s*[^\s\w(]+|~?\w+)\s*\(", line)
            if not found:
                continue
            member = found.group(1)
            if re.match(r"operator\s+\w", member):
                member = re.sub(r"\s+", "_", member)
            else:
                member = re.sub(r"\s+", "", member)
            # Of protected members those count that plug-ins are to know.
            counted = access == "public" or member in known.get(name, {})
            if counted and member != name and not member.startswith("~") and member not in LEFT_OUT:
                counts[member] += 1
    return counts


def declared(known):
    classes = {}
    for path in sorted(HEADERS.glob("M*.h")):
        text = re.sub(r"/\*.*?\*/|//[^\n]*", "", path.read_text(), flags=re.S)
        text = re.sub(r"^\s*#.*?(?<!\\)$", "", text, flags=re.M)
        for name, bases, body in bodies(text):
            classes[name] = declared_members(name, bases, body, known)
    return classes


class Reasons:
    """What docs/api-left-out.txt says; those that are asked for get numbers in that order."""

    def __init__(self):
        self.texts, self.used = [], set()
        self.patterns = []  # (pattern, place of its reason)
        for line in (ROOT / "docs/api-left-out.txt").read_text().splitlines():
            if line.startswith("#") or not line.strip():
                continue
            if not line.startswith(" "):
                self.texts.append(line)
                continue
            self.patterns += [(p, len(self.texts) - 1) for p in line.split()]

    def place(self, name, member):
        """The place of the first reason that fits; None when there is none."""
        for pattern, place in self.patterns:
            wanted, _, part = pattern.partition("::")
            # Brackets of operators are no sets of characters.
            if fnmatch.fnmatchcase(name, wanted) and fnmatch.fnmatchcase(member, (part or "*").replace("[", "[[]")):
                self.used.add(pattern)
                return place
        return None

    def unused(self):
        return [pattern for pattern, _ in self.patterns if pattern not in self.used]


def table():
    rows, extra, reasons = [], [], Reasons()
    wanted_classes = documented()
    there_classes = declared(wanted_classes)
    for name, wanted in sorted(wanted_classes.items()):
        there = there_classes.get(name)
        if there is None:
            place = reasons.place(name, "")
            if place is None:
                extra.append(f"{name} is left out without a reason")
            rows.append(f"| `{name}` | none | {sum(wanted.values())} | the class ({0 if place is None else place + 1}) |")
            continue
        missing = [m for m in sorted(wanted) if there[m] < wanted[m]]
        have = sum(min(there[m], n) for m, n in wanted.items())
        extra += [f"{name}::{m} is declared but not documented (or more overloads of it are)" for m in sorted(there)
                  if there[m] > wanted.get(m, 0) and f"{name}::{m}" not in BEYOND]
        groups = collections.defaultdict(list)
        for m in missing:
            place = reasons.place(name, m)
            if place is None:
                extra.append(f"{name}::{m} is left out without a reason")
            groups[-1 if place is None else place].append(f"`{m}`" + (f" {there[m]} of {wanted[m]}" if there[m] else ""))
        words = "; ".join(f"{' '.join(groups[place])} ({place + 1})" for place in sorted(groups))
        rows.append(f"| `{name}` | {have} | {sum(wanted.values())} | {words or 'nothing'} |")
    head = ["| class | there | documented | not there |", "|---|---|---|---|"]
    numbered = [f"{place}. {text}" for place, text in enumerate(reasons.texts, 1)]
    return "\n".join(numbered + [""] + head + rows), extra, reasons.unused()


def main():
    text = DOCUMENT.read_text()
    made, extra, unused = table()
    begin, end = text.index(BEGIN) + len(BEGIN), text.index(END)
    current = text[:begin] + "\n\n" + made + "\n\n" + text[end:]
    if "--check" not in sys.argv[1:]:
        DOCUMENT.write_text(current)
        print("\n".join(extra + [f"docs/api-left-out.txt: nothing that is left out fits {pattern}" for pattern in unused]))
        return 0
    for member in extra:
        print(member)
    if current != text:
        print("The table in docs/host.md is out of date: run scripts/api_table.py.")
    return 1 if extra or current != text else 0


if __name__ == "__main__":
    sys.exit(main())
