#!/usr/bin/env python3
"""Checks that every room includes only what stands below it.

Usage: check_rooms.py [SOURCE_TREE]

Prints one line for each include that breaks the rule and answers 1; answers 0 when there is none. An include that
names no file of the tree is not looked at, but for <maya/...>: which room a class of the API belongs to is where its
source lies.
"""
import os
import re
import sys

# A room and the rooms that it may include. A folder below a room belongs to it.
HOST = {
    "base": [],
    "values": ["base"],
    "mesh": ["base", "values"],
    "scene": ["base", "values", "mesh"],
    "mel": ["base"],
    "images": ["base"],
    "files": ["base", "values", "mesh", "scene"],
    "viewport": ["base", "values", "mesh", "scene", "images"],
    "api": ["base", "values", "mesh", "scene", "mel", "images", "viewport"],
    "commands": ["base", "values", "mesh", "scene", "mel", "images", "files", "viewport", "api"],
}
PLUGIN = {
    "Common": [],
    "SkyTool": ["Common"],
    "MiscMayaUtils": ["Common"],
    "": ["Common", "SkyTool", "MiscMayaUtils"],
}
# Headers of the API that hold no class of a room: types, names and enumerations that every room may use.
PLAIN_API = {"MApiNamespace", "MApiVersion", "MFn", "MIOStream", "MIOStreamFwd", "MSpace", "MTypes"}


def sources(top):
    for folder, folders, names in os.walk(top):
        folders.sort()
        for name in sorted(names):
            if name.endswith((".h", ".cpp")):
                yield os.path.join(folder, name)


def includes(path):
    with open(path, encoding="utf-8") as file:
        for number, line in enumerate(file, 1):
            found = re.match(r'\s*#\s*include\s*(["<])([^">]+)[">]', line)
            if found:
                yield number, found.group(1) == "<", found.group(2)


def room_of(path, top):
    inside = os.path.relpath(path, top)
    return inside.split(os.sep)[0] if os.sep in inside else ""


class Check:
    def __init__(self, tree):
        self.tree = tree
        self.broken = []

    def say(self, path, number, included, why):
        self.broken.append(f"{os.path.relpath(path, self.tree)}:{number}: includes {included}: {why}")

    def find(self, path, included, top):
        """The file of the tree that an include means, or None."""
        for folder in (os.path.dirname(path), top):
            file = os.path.normpath(os.path.join(folder, included))
            if os.path.isfile(file):
                return file
        return None

    def rooms(self, top, rules, api_rooms=None):
        """Every source below `top` by the rules of its room."""
        for path in sources(top):
            room = room_of(path, top)
            if room not in rules:
                self.broken.append(f"{os.path.relpath(path, self.tree)}: there is no room '{room}'")
                continue
            for number, system, included in includes(path):
                if system and included.startswith("maya/") and api_rooms is not None:
                    name = included[len("maya/"):-len(".h")]
                    other = api_rooms.get(name, "api")
                    if name in PLAIN_API or other == room:
                        continue
                elif system:
                    continue
                else:
                    file = self.find(path, included, top)
                    if file is None:
                        self.foreign(path, number, included, top)
                        continue
                    other = room_of(file, top)
                if other != room and other not in rules[room]:
                    self.say(path, number, included, f"'{room}' does not stand on '{other}'")

    def foreign(self, path, number, included, top):
        """An include of another house: nothing below `top` may need one."""
        for house in ("host/src", "plugin", "apps"):
            folder = os.path.join(self.tree, house)
            if os.path.abspath(folder) != os.path.abspath(top) and os.path.isfile(os.path.join(folder, included)):
                self.say(path, number, included, f"it belongs to {house}")

    def program(self, top):
        """The program uses the host; it loads the plug-in as a user would."""
        for path in sources(top):
            for number, system, included in includes(path):
                if not system and os.path.isfile(os.path.join(self.tree, "plugin", included)):
                    self.say(path, number, included, "the program includes nothing of the plug-in")


def main():
    tree = sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    check = Check(tree)
    host = os.path.join(tree, "host", "src")
    api_rooms = {}
    for path in sources(host):
        name = os.path.basename(path)
        if re.match(r"M[A-Z0-9].*\.cpp$", name) or name == "M3dView.cpp":
            api_rooms[name[:-len(".cpp")]] = room_of(path, host)
    check.rooms(host, HOST, api_rooms)
    check.rooms(os.path.join(tree, "plugin"), PLUGIN)
    check.program(os.path.join(tree, "apps"))
    for line in check.broken:
        print(line)
    return 1 if check.broken else 0


if __name__ == "__main__":
    sys.exit(main())
