#!/usr/bin/python3
"""The command line of zelmora where no window is needed: no display, no session bus.

    desktop_options_test.py PROGRAM
"""

import os

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

        self.assertIn("使い方", self.run_console("--help", language="ja_JP.UTF-8").stdout.decode())
        with open("/dev/full", "wb") as full:
            self.assert_run(self.run_console("--help", stdout=full), 1)
        self.assertEqual(os.listdir(self.home), [])


console_case.main()
