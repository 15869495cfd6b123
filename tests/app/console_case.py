"""What the tests of whole programs share: a user with an empty home folder, and the program.

A test file ends in console_case.main(), which takes the program's path as its first argument.
"""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

TEXT = "表示と能力、①髙い山。ﾊﾟﾝも。\r\n"


class ConsoleCase(unittest.TestCase):
    """Paths in here are bytes, relative to the files' folder `self.folder`."""

    program = None  # set by main()
    scratch = None  # where the temporary folders are made; $TMPDIR without it

    def setUp(self):
        self.top = os.fsencode(tempfile.mkdtemp(prefix="zelmora-", dir=self.scratch))
        self.addCleanup(shutil.rmtree, self.top)
        self.folder = self.path_of_top(b"files")
        self.home = self.path_of_top(b"home")
        self.saved_settings = os.path.join(self.home, b"config/zelmora/zelmora.plist")
        os.mkdir(self.folder)
        os.mkdir(self.home)

    def path_of_top(self, name):
        return os.path.join(self.top, name)

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, contents):
        """Makes a file and the folders on the way to it."""
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
        with open(self.path(name), "wb") as file:
            file.write(contents)

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def tree(self):
        """The contents of every regular file beneath the folder, by name."""
        found = {}
        for folder, _, names in os.walk(self.folder):
            for name in names:
                path = os.path.join(folder, name)
                if os.path.isfile(path) and not os.path.islink(path):
                    found[os.path.relpath(path, self.folder)] = self.read(path)
        return found

    def command(self, *arguments):
        return [os.fsencode(self.program), *arguments]

    def environment(self, language="C"):
        return {"HOME": self.home, "XDG_CONFIG_HOME": os.path.join(self.home, b"config"),
                "LC_ALL": language, "PATH": "/usr/bin:/bin"}

    def run_console(self, *arguments, language="C", **options):
        """Runs the program in the files' folder; its stdout and stderr are bytes."""
        return subprocess.run(self.command(*arguments), cwd=self.folder, timeout=60, check=False,
                              env=self.environment(language), stdin=subprocess.DEVNULL,
                              **{"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options})

    def convert(self, *arguments, **options):
        """run_console without a backup."""
        return self.run_console("--no-backup", *arguments, **options)

    def assert_run(self, run, status, last_line=None):
        self.assertEqual(run.returncode, status, run.stderr)
        if last_line is not None:
            self.assertEqual(run.stderr.splitlines()[-1:], [last_line], run.stderr)


def main():
    ConsoleCase.program = os.path.abspath(sys.argv.pop(1))
    unittest.main()
