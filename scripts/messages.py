#!/usr/bin/env python3
"""Holds docs/troubleshooting.md to the messages that the sources can give: messages.py [--list | --missing].

A message is a text that is handed to what reports or throws one. Of its parts that do not vary, each must stand in the
document, and what the document quotes as one must stand in the sources. --list writes all messages, --missing those that the document lacks, each with its source, and … where it varies.
"""
import re
import sys
from pathlib import Path

TREE = Path(__file__).resolve().parent.parent
DOCUMENT = TREE / "docs/troubleshooting.md"
ROOMS = ["apps", "host/src", "plugin"]
CALL = re.compile(r"""\b(?:
    (?:[A-Z]\w*)?(?:Error|Failure)         # what is thrown: Failure, SceneError, std::runtime_error is below
  | runtime_error | length_error
  | show(?:Error|Warning) | display(?:Error|Warning) | report\w*(?:Error|Warning|Failure) | gatherError | usageError
  | fail | refuse | refused | warn | perror
  | (?:problems|warnings|notes)\.add
  )\s*[({]""", re.VERBOSE)
PIECE = re.compile(r'"((?:[^"\\\n]|\\.)*)"|([(){}\[\];])')
# Code that nobody runs by way of the program, and texts that are no messages.
SKIPPED = {"host/src/mel/Command.h", "host/src/mel/StackGuard.h"}


def plain(text):
    """A literal as it is shown, with … where something is put in."""
    text = re.sub(r"\\n|\\t", " ", text).replace('\\"', '"').replace("\\\\", "\\")
    text = re.sub(r"\{[^{}]*\}|%[-+0-9.]*[a-z]", "…", text)
    return text


def message_after(source, at):
    """The texts of a call's arguments, in their order, from behind its bracket."""
    depth, texts = 1, []
    for piece in PIECE.finditer(source, at):
        if piece.group(1) is not None:
            texts.append(plain(piece.group(1)))
        elif piece.group(2) in "({[":
            depth += 1
        elif piece.group(2) in ")}]":
            depth -= 1
        if depth == 0 or piece.group(2) == ";":
            break
    return texts


def tells(text):
    return " " in text.strip() and len(re.sub(r"[^A-Za-z]", "", text)) > 6


def messages():
    """(file, texts) of every message, in the order of the sources."""
    for room in ROOMS:
        for file in sorted((TREE / room).rglob("*")):
            name = str(file.relative_to(TREE))
            if file.suffix not in (".cpp", ".h") or name in SKIPPED or name.startswith("host/src/values"):
                continue
            source = re.sub(r"^\s*//.*$", "", file.read_text(encoding="utf-8"), flags=re.M)
            source = re.sub(r'"\s*\n\s*"', "", source)
            for call in CALL.finditer(source):
                texts = message_after(source, call.end())
                if any(tells(text) for text in texts):
                    yield name, texts


def fragments(texts):
    """The parts that do not vary."""
    for text in texts:
        for part in text.split("…"):
            if tells(part):
                yield part.strip()


def literals():
    """All texts of the sources, as they are shown."""
    for room in ROOMS:
        for file in sorted((TREE / room).rglob("*")):
            if file.suffix in (".cpp", ".h"):
                source = re.sub(r'"\s*\n\s*"', "", file.read_text(encoding="utf-8"))
                yield from (plain(piece.group(1)) for piece in PIECE.finditer(source) if piece.group(1) is not None)


def quoted(document):
    """What the document quotes as a message: in the first cell of a row, or as an item of a list."""
    for line in document.split("\n"):
        if line.startswith(("| `", "- `")):
            cell = line[2:].replace("\\|", "\0").split(" | ")[0].replace("\0", "|")
            yield from (two or one for two, one in re.findall(r"`` (.*?) ``|`([^`]+)`", cell))


def main():
    invented = 0
    there = re.sub(r"\s+", " ", "\n".join(literals()))
    for message in quoted(DOCUMENT.read_text(encoding="utf-8")):
        lost = [part for part in fragments([message]) if re.sub(r"\s+", " ", part) not in there]
        invented += bool(lost)
        if lost and "--missing" not in sys.argv and "--list" not in sys.argv:
            print(f"docs/troubleshooting.md tells of \"{lost[0]}\", which no source says")
    # One blank for all, as lines of the document are broken; a bar is written \| in a table.
    document = re.sub(r"\s+", " ", DOCUMENT.read_text(encoding="utf-8").replace("\\|", "|"))
    known = lambda text: re.sub(r"\s+", " ", text) in document
    count = missing = 0
    for file, texts in messages():
        count += 1
        lacking = [part for part in fragments(texts) if not known(part)]
        missing += bool(lacking)
        if "--list" in sys.argv or (lacking and "--missing" in sys.argv):
            print(file + "\t" + "…".join(texts))
        elif lacking:
            print(f"{file}: docs/troubleshooting.md does not tell of \"{lacking[0]}\"")
    if count < 500:
        sys.exit(f"{count} messages are found in the sources: fewer than there are")
    sys.exit(1 if missing + invented and "--list" not in sys.argv else 0)


if __name__ == "__main__":
    main()
