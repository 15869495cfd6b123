#!/usr/bin/python3
"""How both programs end when they are told to from outside, in the middle of a batch or a dialog.

    stop_test.py DESKTOP CONVERT SLOW_SYNC

SLOW_SYNC is a library to preload that makes each file take its time.
"""

import os
import signal
import sys
import time

import console_case
from desktop_case import KANJI, UTF8, DesktopCase, until

SLOW_SYNC, CONVERT = (os.path.abspath(sys.argv.pop()) for _ in range(2))
FILES = {b"a.txt": KANJI, b"b.txt": KANJI, b"c.txt": KANJI}
ONE_CONVERTED = {**FILES, b"a.txt": UTF8}


class StopTest(DesktopCase):
    def converting(self, program, sync_seconds):
        """The program at its first file of three, which it is about to put in its place."""
        sign = self.path_of_top(b"begun")
        if os.path.exists(sign):
            os.remove(sign)
        for name in FILES:
            self.write(name, KANJI)
        process = self.start([program, *FILES], env={
            **self.environment(), "LD_PRELOAD": SLOW_SYNC, "SYNC_SECONDS": str(sync_seconds),
            "SYNC_BEGUN": sign, "ASAN_OPTIONS": "verify_asan_link_order=0"})
        self.assertTrue(until(lambda: os.path.exists(sign)))
        return process

    def test_the_file_in_hand_is_finished_and_the_rest_are_left(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            # The console program is not cut by being told again.
            for program, status, times in [(self.program, 0, 1), (CONVERT, 128 + number, 3)]:
                with self.subTest(signal=number, program=program):
                    process = self.converting(program, 1)
                    for _ in range(times):
                        process.send_signal(number)
                        time.sleep(0.01)
                    self.assert_ends(process, status)
                    self.assertEqual(self.tree(), ONE_CONVERTED)

    def test_a_closed_terminal_is_nothing_to_who_was_started_to_ignore_it(self):
        signal.signal(signal.SIGHUP, signal.SIG_IGN)  # as nohup does; the child inherits it
        self.addCleanup(signal.signal, signal.SIGHUP, signal.SIG_DFL)
        process = self.converting(CONVERT, 1)
        process.send_signal(signal.SIGHUP)
        self.assert_ends(process)

    def test_a_file_that_hangs_is_given_up_after_ten_seconds_or_when_asked_twice(self):
        for number, least, most, status in [(signal.SIGTERM, 9, 20, 0),
                                            (signal.SIGINT, 0, 8, -signal.SIGINT)]:
            with self.subTest(signal=number):
                process = self.converting(self.program, 100)
                begin = time.monotonic()
                process.send_signal(number)
                if status:
                    time.sleep(1)
                    process.send_signal(number)
                self.assert_ends(process, status)
                self.assertTrue(least < time.monotonic() - begin < most)
                self.assertEqual(self.tree(), FILES)

    def test_no_dialog_keeps_it(self):
        blocker = self.path(b"blocker")
        self.write(blocker, b"")
        backup = {"autoBackup": True, "backupDataDir": os.fsdecode(blocker) + "/in"}
        for name, settings, arguments in [("an alert", backup, [b"a.txt"]),
                                          ("the manual", {"displayManualAlert": False}, [])]:
            with self.subTest(name):
                self.settings(**settings)
                self.write(b"a.txt", KANJI)
                process = self.zelmora(*arguments)
                time.sleep(2)  # there is no way to see it
                process.send_signal(signal.SIGTERM)
                self.assert_ends(process)
                self.assertEqual(self.read(b"a.txt"), KANJI)

    def test_a_question_about_the_program_needs_no_display(self):
        for arguments, status, begin in [(["--help"], 0, b"Usage: zelmora "), (["a.txt", "--version"], 0, b"zelmora 0."),
                                         (["--help", "-style"], 2, b"zelmora: Unknown option: -style\n"),
                                         (["a.txt", ""], 2, b"zelmora: No path given\n")]:
            run = self.run_console(*arguments)
            self.assertEqual(run.returncode, status)
            self.assertTrue((run.stderr if status else run.stdout).startswith(begin), run)


console_case.main()
