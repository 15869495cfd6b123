#!/usr/bin/env python3
"""Every test file is built or run, and none of its tests is switched off.

A test that silently stops running looks like one that passes. For each tests/**/*_test.* file this
asks CTest, which lists what it will run: a .cpp must have each of its TESTs in the list, a script
must be the command of a test. Usage: check_registered.py SOURCE_FOLDER BUILD_FOLDER
"""

import json
import pathlib
import re
import subprocess
import sys

TEST = re.compile(r"^(?:TYPED_)?TEST(?:_[FP])?\(\s*(\w+)\s*,\s*(\w+)\s*\)", re.MULTILINE)


def problems_in_cpp(text, names):
    found = TEST.findall(text)
    if not found:
        yield "holds no test"
    if re.search("DISABLED_|GTEST_SKIP", text):
        yield "switches a test off"
    for suite, test in found:
        # A parameterized or typed test is listed once for each parameter, with more around it.
        if not re.search(rf"(^|[./]){suite}(/\d+)?\.{test}(/.*)?$", names, re.MULTILINE):
            yield f"{suite}.{test} is not run"


source, build = pathlib.Path(sys.argv[1]), sys.argv[2]
listing = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], check=True,
                         capture_output=True, text=True)
tests = json.loads(listing.stdout)["tests"]
names = "\n".join(test["name"] for test in tests)
commands = [word for test in tests for word in test.get("command", [])]
problems = [f"{test['name']}: not built" for test in tests if not test.get("command")]
files = sorted((source / "tests").rglob("*_test.*"))
for file in files:
    name = file.relative_to(source).as_posix()
    if file.suffix == ".cpp":
        problems += [f"{name}: {each}" for each in problems_in_cpp(file.read_text("utf-8"), names)]
    elif file.suffix in (".py", ".sh") and not any(word.endswith(name) for word in commands):
        problems.append(f"{name}: is not run")
print(*problems, sep="\n")
print(f"{len(files)} test files, {len(tests)} tests, {len(problems)} problems")
sys.exit(1 if problems or not files else 0)
