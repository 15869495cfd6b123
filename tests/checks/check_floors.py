#!/usr/bin/env python3
"""Includes go down the floors only, and nothing under platform/desktop leaks Qt to the rest.

The compiler enforces the same through each floor's include path; this check also sees headers that
nothing compiles yet and says which line is wrong. Usage: check_floors.py SOURCE_FOLDER
"""

import pathlib
import re
import sys

# Which floors each floor's files may include, itself apart.
TEXT, FILES, DEFAULTS = "platform/text", "platform/files", "platform/defaults"
EVENTS, UI, THREADS = "platform/events", "platform/ui", "platform/threads"
BASE = {TEXT, FILES, DEFAULTS, EVENTS, UI, THREADS}
ALLOWED = {
    TEXT: set(),
    THREADS: set(),
    EVENTS: {THREADS},
    FILES: {TEXT},
    DEFAULTS: {TEXT, FILES, THREADS},
    UI: {EVENTS},
    "platform/console": {TEXT, EVENTS, UI},
    "platform/desktop": BASE,
    "foundation": {TEXT, DEFAULTS, FILES, EVENTS, THREADS},
    "textutil": {TEXT, EVENTS, THREADS},
    "markup": {TEXT, "textutil"},
    "engine": BASE | {"foundation", "textutil", "markup"},
    "app": BASE
    | {"platform/console", "platform/desktop", "foundation", "textutil", "markup", "engine"},
}
INCLUDE = re.compile(r'^\s*#\s*include\s+([<"])([^">]+)[">]')
QT = re.compile(r"^(Q[A-Z]\w*|Qt\w+/.*)$")


def floor_of(path):
    parts = path.split("/")
    return "/".join(parts[:2]) if parts[0] == "platform" else parts[0]


def problems_in(root, file):
    name = file.relative_to(root).as_posix()
    floor = floor_of(name)
    for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        bracket, included = match.groups()
        where = f"{name}:{number}: "
        if bracket == "<":
            if QT.match(included) and floor not in ("platform/desktop", "app"):
                yield f"{where}{floor} includes the Qt header <{included}>"
        elif floor_of(included) not in ALLOWED:
            yield f'{where}"{included}" is not a path from the root of a floor'
        elif floor_of(included) not in ALLOWED[floor] | {floor}:
            yield f"{where}{floor} must not include {floor_of(included)}"


def main():
    root = pathlib.Path(sys.argv[1])
    files = [
        file
        for floor in ALLOWED
        for pattern in ("*.h", "*.cpp")
        for file in sorted((root / floor).glob(pattern))
    ]
    unknown = {
        floor_of(file.relative_to(root).as_posix())
        for top in {floor.split("/")[0] for floor in ALLOWED}
        for file in (root / top).rglob("*.cpp")
    } - set(ALLOWED)
    problems = [f"{floor}: a floor that this check does not know" for floor in sorted(unknown)]
    for file in files:
        problems.extend(problems_in(root, file))
    print(*problems, sep="\n")
    print(f"{len(files)} files, {len(problems)} includes that go the wrong way")
    sys.exit(1 if problems or not files else 0)


main()
