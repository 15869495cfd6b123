#!/usr/bin/python3
"""Kills both programs at random moments of a batch and looks for what is lost.

    kill_test.py CONVERT DESKTOP [ROUNDS]

After each kill every source must stand under its name, whole, as it was or converted, or be whole
and converted under its temporary name. A copy that has its name in the backup folder must be whole.
Every fourth round is the desktop program's, which runs without a screen. 200 ROUNDS unless told
otherwise. $ZELMORA_KILL_DIR is where the files are, a temporary folder without it; it should be on
a disk.
"""

import os
import pathlib
import plistlib
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


def contents_of(folder):
    return {path.name: path.read_bytes() for path in folder.iterdir()} if folder.exists() else None


class Batch:
    """One folder of sources, made anew for each round, and the program that converts it."""

    def __init__(self, program, top):
        self.folder, self.backup, self.settings = top / "files", top / "backup", top / "zelmora/zelmora.plist"
        self.settings.parent.mkdir(parents=True)
        self.command = [program, self.folder]
        sanitizers = {name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}
        self.environment = {**sanitizers, "HOME": top, "XDG_CONFIG_HOME": top, "XDG_RUNTIME_DIR": top,
                            "LC_ALL": "C", "QT_QPA_PLATFORM": "offscreen"}
        begin = time.monotonic()
        status = self.start(with_backup=True).wait()
        assert status == 0, f"a batch that nobody killed ended with {status}"
        self.duration = time.monotonic() - begin

    def start(self, with_backup):
        for folder in (self.folder, self.backup):
            shutil.rmtree(folder, ignore_errors=True)
        self.folder.mkdir()
        for name, contents in OLD.items():
            (self.folder / name).write_bytes(contents)
        self.settings.write_bytes(plistlib.dumps(
            {"encodingCode": 4, "autoBackup": with_backup, "backupDataDir": str(self.backup),
             "autoQuit": True, "displayManualAlert": True}))
        return subprocess.Popen(self.command, env=self.environment, stderr=subprocess.DEVNULL)

    def problems(self, scratch_allowed):
        """What is wrong, and how many files are converted."""
        found = contents_of(self.folder)
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
        problems += [f"{name} is left over" for name in found
                     if not (scratch_allowed and re.fullmatch(r"\.zlm\d+-\d+", name))]
        if contents_of(self.backup / "files") not in (None, OLD):
            problems.append("the backup is not whole")
        return problems, converted


def main():
    rounds = int(sys.argv[3]) if len(sys.argv) > 3 else 200
    seed = random.randrange(1 << 32)
    moments = random.Random(seed)
    failures = midway = 0
    with tempfile.TemporaryDirectory(prefix="zelmora-kill-", dir=os.environ.get("ZELMORA_KILL_DIR")) as top:
        console, desktop = (Batch(os.path.abspath(program), pathlib.Path(top, str(number)).absolute())
                            for number, program in enumerate(sys.argv[1:3]))
        scratch_allowed = not leaves_nothing_unnamed(top)
        for number in range(rounds):
            batch = desktop if number % 4 == 3 else console
            process = batch.start(with_backup=moments.random() < 0.5)
            time.sleep(moments.uniform(0, batch.duration))
            process.kill()
            process.wait()
            problems, converted = batch.problems(scratch_allowed)
            midway += 0 < converted < len(OLD)
            # How fast the disk is changes under us.
            batch.duration *= 0.95 if converted == len(OLD) else 1.02
            failures += len(problems)
            for problem in problems:
                print(f"round {number}: {problem}")
    print(f"{rounds} rounds from seed {seed}, {midway} of them in the middle of the conversions, "
          f"{failures} problems")
    # Kills that come too early or too late every time would prove nothing.
    sys.exit(1 if failures or midway * 10 < rounds else 0)


main()
