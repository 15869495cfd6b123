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

TEST = re.compile(r"^(TEST|TEST_F|TEST_P|TYPED_TEST)\(\s*(\w+)\s*,\s*(\w+)\s*\)", re.MULTILINE)


def registered_tests(build):
    listing = subprocess.run(
        ["ctest", "--test-dir", build, "--show-only=json-v1"],
        check=True, capture_output=True, text=True,
    )
    return json.loads(listing.stdout)["tests"]


def problems_in_cpp(name, text, names):
    found = TEST.findall(text)
    if not found:
        yield f"{name}: holds no test"
    for macro, suite, test in found:
        if "DISABLED_" in suite + test:
            yield f"{name}: {suite}.{test} is switched off"
            continue
        # A parameterized or typed test is listed once for each parameter, with more around it.
        pattern = rf"(^|[./]){suite}(/\d+)?\.{test}(/.*)?$"
        if not any(re.search(pattern, each) for each in names):
            yield f"{name}: {suite}.{test} is not run"
    if "GTEST_SKIP" in text:
        yield f"{name}: skips a test"


def main():
    source, build = pathlib.Path(sys.argv[1]), sys.argv[2]
    tests = registered_tests(build)
    names = [test["name"] for test in tests]
    commands = [word for test in tests for word in test.get("command", [])]
    problems = [f"{test['name']}: not built" for test in tests if not test.get("command")]
    files = sorted((source / "tests").rglob("*_test.*"))
    for file in files:
        name = file.relative_to(source).as_posix()
        if file.suffix == ".cpp":
            problems.extend(problems_in_cpp(name, file.read_text(encoding="utf-8"), names))
        elif file.suffix in (".py", ".sh") and not any(c.endswith(name) for c in commands):
            problems.append(f"{name}: is not run")
    print(*problems, sep="\n")
    print(f"{len(files)} test files, {len(tests)} tests, {len(problems)} problems")
    sys.exit(1 if problems or not files else 0)


main()
