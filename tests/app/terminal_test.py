#!/usr/bin/python3
"""zelmora-convert on a pseudo terminal: the progress line, and Ctrl-C.

    terminal_test.py PROGRAM SLOW_SYNC

SLOW_SYNC is a library to preload that makes each file take its time.
"""

import fcntl
import os
import pty
import select
import signal
import struct
import subprocess
import sys
import termios
import time

import console_case
from console_case import TEXT

SOURCE = TEXT.encode("cp932")
SLOW_SYNC = os.path.abspath(sys.argv.pop(2))
NAMES = [b"a.txt", b"b.txt", b"c.txt"]
CTRL_C = b"\x03"  # as the terminal's driver takes it


class Terminal:
    """A process group in the foreground of a terminal of its own, which remembers all it showed."""

    def __init__(self, command, columns=60, **options):
        self.control, terminal = pty.openpty()
        fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        self.process = subprocess.Popen(
            command, stdin=terminal, stdout=terminal, stderr=terminal, start_new_session=True,
            preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0), **options)
        os.close(terminal)
        self.shown = b""

    def close(self):
        self.process.kill()
        self.process.wait()
        os.close(self.control)

    def press_ctrl_c(self, times):
        for _ in range(times):
            os.write(self.control, CTRL_C)
            time.sleep(0.01)

    def wait_until(self, condition):
        """Answers whether `condition` became true while the program ran (60 seconds at most)."""
        deadline = time.monotonic() + 60
        while time.monotonic() < deadline:
            if condition():
                return True
            if select.select([self.control], [], [], 0.002)[0]:
                try:
                    self.shown += os.read(self.control, 65536)
                except OSError:  # the last process has closed it
                    return condition()
        return False

    def wait(self):
        """The exit status, once all output has been read."""
        self.wait_until(lambda: False)
        return self.process.wait(60)


class TerminalTest(console_case.ConsoleCase):
    def start(self, *arguments, language="C", variables={}, **options):
        terminal = Terminal(self.command("--no-backup", *arguments), cwd=self.folder,
                            env=self.environment(language) | variables, **options)
        self.addCleanup(terminal.close)
        return terminal

    def start_with_file_in_hand(self):
        """Converts three files, each of which takes a second; stays until the first is in hand."""
        for name in NAMES:
            self.write(name, SOURCE)
        terminal = self.start(*NAMES, variables={"LD_PRELOAD": SLOW_SYNC, "SYNC_SECONDS": "1",
                                                 "ASAN_OPTIONS": "verify_asan_link_order=0"})
        self.assertTrue(terminal.wait_until(lambda: b"] 33% Files remaining: 2" in terminal.shown), terminal.shown)
        return terminal

    def test_progress_is_one_line_that_fits(self):
        for number in range(300):
            self.write(b"\xe6\x97\xa5%d.txt" % number, SOURCE)
        terminal = self.start(".", language="ja", columns=45)
        self.assertEqual(terminal.wait(), 0)
        drawn, _, rest = terminal.shown.rpartition(b"\r\x1b[K")
        self.assertEqual(rest.decode(), "変換 300 件、失敗 0 件\r\n")
        for frame in drawn.decode().split("\r\x1b[K")[1:]:
            width = sum(1 if character.isascii() else 2 for character in frame)
            self.assertLess(width, 45, frame)
            self.assertRegex(frame, r"^(\[#*\.*\] \d+% [^\n]*)?$")
        self.assertEqual(self.convert(".").stderr, b"300 converted, 0 failed\n")

    def test_who_is_told_to_stop_finishes_the_file_in_hand(self):
        for number, tell in [
            (signal.SIGINT, lambda terminal: terminal.press_ctrl_c(1)),
            (signal.SIGINT, lambda terminal: terminal.press_ctrl_c(5)),  # does not cut it
            (signal.SIGTERM, lambda terminal: terminal.process.terminate()),
            (signal.SIGHUP, lambda terminal: terminal.process.send_signal(signal.SIGHUP)),
        ]:
            with self.subTest(signal=number):
                terminal = self.start_with_file_in_hand()
                tell(terminal)
                self.assertEqual(terminal.wait(), 128 + number)
                self.assertTrue(terminal.shown.endswith(b"1 converted, 0 failed\r\n"), terminal.shown)
                self.assertEqual(self.tree(), dict.fromkeys(NAMES, SOURCE) | {NAMES[0]: TEXT.encode()})

    def test_a_closed_terminal_is_nothing_to_who_was_started_to_ignore_it(self):
        signal.signal(signal.SIGHUP, signal.SIG_IGN)  # as nohup does; the child inherits it
        self.addCleanup(signal.signal, signal.SIGHUP, signal.SIG_DFL)
        terminal = self.start_with_file_in_hand()
        terminal.process.send_signal(signal.SIGHUP)
        self.assertEqual(terminal.wait(), 0)


console_case.main()
