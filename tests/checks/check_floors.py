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
    FILES: {TEXT, THREADS},
    DEFAULTS: {TEXT, FILES, THREADS},
    UI: {EVENTS},
    "platform/console": {TEXT, EVENTS, UI},
    "platform/desktop": BASE,
    "foundation": {TEXT, DEFAULTS, FILES, EVENTS, THREADS},
    "textutil": {TEXT, EVENTS, THREADS},
    "markup": {TEXT, "textutil"},
    "engine": BASE | {"foundation", "textutil", "markup"},
}
ALLOWED["app"] = set(ALLOWED)
INCLUDE = re.compile(r'^\s*#\s*include\s+(["<])([^">]+)[">]', re.M)


def floor_of(path):
    return re.match(r"platform/[^/]*|[^/]*", path)[0]


def problems_in(name, text):
    floor = floor_of(name)
    if floor not in ALLOWED:
        yield f"{name}: a floor that this check does not know"
        return
    for bracket, included in INCLUDE.findall(text):
        if bracket == '"' and floor_of(included) not in ALLOWED[floor] | {floor}:
            yield f"{name}: {floor} must not include {included}"
        if re.match(r"Q[A-Zt]", included) and floor not in ("platform/desktop", "app"):
            yield f"{name}: {floor} includes the Qt header {included}"


root = pathlib.Path(sys.argv[1])
files = [file.relative_to(root).as_posix() for top in {floor.split("/")[0] for floor in ALLOWED}
         for file in (root / top).rglob("*.[ch]*") if file.suffix in (".h", ".cpp")]
problems = [each for name in files for each in problems_in(name, (root / name).read_text("utf-8"))]
print(*problems, sep="\n")
print(f"{len(files)} files, {len(problems)} includes that go the wrong way")
sys.exit(1 if problems or not files else 0)
