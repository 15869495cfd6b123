#!/usr/bin/python3
"""Kills zelmora-convert at random moments of a batch and looks for what is lost.

    kill_test.py PROGRAM [ROUNDS]

After each kill every source must stand under its name, whole, as it was or converted, or be whole
and converted under its temporary name. $ZELMORA_KILL_ROUNDS is the default for ROUNDS, 100 without.
"""

import os
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time

SMALL = "表示と能力、吾輩は猫である。\r\n"
SIZES = [1 + number % 7 for number in range(40)] + [4_000, 12_000, 30_000]  # in lines
OLD = {f"{number}.txt": (f"第{number}号\r\n" + SMALL * lines).encode("cp932")
       for number, lines in enumerate(SIZES)}
NEW = {name: contents.decode("cp932").encode() for name, contents in OLD.items()}


def leaves_nothing_unnamed(folder):
    """Whether new files have no name here before they are whole."""
    try:
        os.close(os.open(folder, os.O_TMPFILE | os.O_RDWR))
        return True
    except OSError:
        return False


def problems_in(folder, scratch_allowed):
    """What is wrong, and how many files are converted."""
    found = {}
    for name in os.listdir(folder):
        with open(os.path.join(folder, name), "rb") as file:
            found[name] = file.read()
    problems, converted = [], 0
    for name, old in OLD.items():
        temporary = name.replace(".", "#0.")
        own, other = found.pop(name, None), found.pop(temporary, None)
        converted += own == NEW[name]
        if own is None and other is None:
            problems.append(f"{name} is gone")
        if own not in (None, old, NEW[name]):
            problems.append(f"{name} is neither as it was nor converted")
        if other not in (None, NEW[name]):
            problems.append(f"{temporary} is not whole")
    for name in found:
        if not (scratch_allowed and re.fullmatch(r"\.zlm\d+-\d+", name)):
            problems.append(f"{name} is left over")
    return problems, converted


class Batch:
    """One folder of sources, made anew for each round."""

    def __init__(self, program, top):
        self.command = [program, "--quiet", "--encoding", "utf-8"]
        self.environment = {"HOME": top, "XDG_CONFIG_HOME": top, "LC_ALL": "C"}
        self.folder = os.path.join(top, "files")
        self.backup = os.path.join(top, "backup")

    def make(self):
        shutil.rmtree(self.folder, ignore_errors=True)
        shutil.rmtree(self.backup, ignore_errors=True)
        os.mkdir(self.folder)
        for name, contents in OLD.items():
            with open(os.path.join(self.folder, name), "wb") as file:
                file.write(contents)

    def start(self, with_backup):
        options = ["--backup", self.backup] if with_backup else ["--no-backup"]
        return subprocess.Popen(self.command + options + [self.folder], env=self.environment,
                                stderr=subprocess.DEVNULL)

    def duration(self):
        self.make()
        start = time.monotonic()
        status = self.start(True).wait()
        assert status == 0, f"a batch that nobody killed ended with {status}"
        return time.monotonic() - start


def main():
    program = os.path.abspath(sys.argv[1])
    rounds = int(sys.argv[2] if len(sys.argv) > 2 else os.environ.get("ZELMORA_KILL_ROUNDS", 100))
    top = tempfile.mkdtemp(prefix="zelmora-kill-")
    failures = midway = 0
    try:
        batch = Batch(program, top)
        duration = batch.duration()
        scratch_allowed = not leaves_nothing_unnamed(top)
        for number in range(rounds):
            batch.make()
            process = batch.start(with_backup=number % 2 == 0)
            time.sleep(random.Random(number).uniform(0, duration))
            process.kill()
            process.wait()
            problems, converted = problems_in(batch.folder, scratch_allowed)
            midway += 0 < converted < len(OLD)
            # How fast the disk is changes under us.
            duration *= 0.95 if converted == len(OLD) else 1.02
            failures += len(problems)
            for problem in problems:
                print(f"round {number}: {problem}")
    finally:
        shutil.rmtree(top)
    print(f"{rounds} rounds, {midway} of them in the middle of the conversions, {failures} problems")
    # Kills that come too early or too late every time would prove nothing.
    sys.exit(1 if failures or midway * 10 < rounds else 0)


main()
