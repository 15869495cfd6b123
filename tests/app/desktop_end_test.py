#!/usr/bin/python3
"""How zelmora ends when it is asked to from outside, at any moment.

    desktop_end_test.py PROGRAM SLOW_SYNC_LIBRARY
"""

import os
import signal
import sys
import time

import console_case
from desktop_case import KANJI, UTF8, DesktopCase, until

SLOW_SYNC = sys.argv.pop(2)
FILES = {b"a.txt": KANJI, b"b.txt": KANJI, b"c.txt": KANJI}


class DesktopEndTest(DesktopCase):
    def converting(self, sync_seconds):
        """The program at its first file of three, which it is about to put in its place."""
        sign = self.path_of_top(b"begun")
        if os.path.exists(sign):
            os.remove(sign)
        for name in FILES:
            self.write(name, KANJI)
        process = self.zelmora(*FILES, LD_PRELOAD=SLOW_SYNC, SYNC_SECONDS=str(sync_seconds),
                               SYNC_BEGUN=sign, ASAN_OPTIONS="verify_asan_link_order=0")
        self.assertTrue(until(lambda: os.path.exists(sign)))
        return process

    def test_the_file_in_hand_is_finished_and_the_rest_are_left(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(signal=number):
                process = self.converting(1)
                process.send_signal(number)
                self.assert_ends(process)
                self.assertEqual(self.tree(), {**FILES, b"a.txt": UTF8})

    def test_a_file_that_hangs_is_given_up_after_ten_seconds_or_when_asked_twice(self):
        for number, least, most, status in [(signal.SIGTERM, 9, 20, 0),
                                            (signal.SIGINT, 0, 8, -signal.SIGINT)]:
            with self.subTest(signal=number):
                process = self.converting(100)
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

    def test_a_closed_terminal_is_nothing_to_who_was_started_to_ignore_it(self):
        self.write(b"a.txt", KANJI)
        signal.signal(signal.SIGHUP, signal.SIG_IGN)  # as nohup does; the child inherits it
        process = self.zelmora(b"a.txt")
        signal.signal(signal.SIGHUP, signal.SIG_DFL)
        self.assert_converted(b"a.txt")
        process.send_signal(signal.SIGHUP)
        time.sleep(1)
        self.assertIsNone(process.poll())


console_case.main()
