#!/usr/bin/python3
"""The command line of zelmora where no window is needed: no display, no session bus.

    desktop_options_test.py PROGRAM
"""

import os
import subprocess

import console_case

TRY_HELP = "zelmora: Try 'zelmora --help'.\n"

# Arguments, status, what each stream begins with.
ANSWERS = [
    (["--help"], 0, "Usage: zelmora ", ""),
    (["--help", "--version", "--", "a.txt"], 0, "Usage: zelmora ", ""),
    (["a.txt", "--version"], 0, "zelmora 0.", ""),
    (["--bogus", "a.txt"], 2, "", "zelmora: Unknown option: --bogus\n" + TRY_HELP),
    (["--help", "-style"], 2, "", "zelmora: Unknown option: -style\n" + TRY_HELP),
    (["--version=2"], 2, "", "zelmora: Option takes no value: --version\n" + TRY_HELP),
    (["a.txt", ""], 2, "", "zelmora: No path given\n" + TRY_HELP),
    (["-\x1b[2J"], 2, "", "zelmora: Unknown option: -\\x1B[2J\n" + TRY_HELP),
]


class DesktopOptionsTest(console_case.ConsoleCase):
    def test_answers_come_without_a_display(self):
        for arguments, status, out, error in ANSWERS:
            with self.subTest(arguments=arguments):
                run = self.run_console(*arguments)
                self.assertEqual(run.returncode, status)
                self.assertTrue(run.stdout.decode().startswith(out), run.stdout)
                self.assertEqual(run.stdout == b"", out == "")
                self.assertEqual(run.stderr.decode(), error)

    def test_answers_are_in_the_users_language(self):
        self.assertIn("使い方", self.run_console("--help", language="ja_JP.UTF-8").stdout.decode())

    def test_an_answer_that_cannot_be_written_is_a_failure(self):
        with open("/dev/full", "wb") as full:
            run = subprocess.run(self.command("--help"), stdout=full, check=False, timeout=60,
                                 env=self.environment())
        self.assertEqual(run.returncode, 1)
        self.assertEqual(os.listdir(self.home), [])


console_case.main()
