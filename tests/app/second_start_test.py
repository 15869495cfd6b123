#!/usr/bin/python3
"""zelmora on a session bus: a second start hands its paths to the first.

    second_start_test.py PROGRAM
"""

import os
import signal
import subprocess

import console_case
from desktop_case import KANJI, UTF8, DesktopCase, until


class SecondStartTest(DesktopCase):
    """Each test has a session bus of its own."""

    def setUp(self):
        super().setUp()
        self.bus = "unix:path=" + os.fsdecode(self.path_of_top(b"bus"))
        daemon = self.start(["dbus-daemon", "--session", "--nofork", "--print-address",
                             "--address=" + self.bus], stdout=subprocess.PIPE)
        daemon.stdout.readline()  # it listens
        daemon.stdout.close()

    def service(self, *arguments):
        """A process that has the name."""
        process = self.zelmora(*arguments)
        self.assertTrue(until(lambda: b"true" in self.call(
            "org.freedesktop.DBus", "/", "org.freedesktop.DBus.NameHasOwner",
            "org.zelmora.Zelmora").stdout))
        return process

    def first(self, *arguments):
        """One that has launched."""
        process = self.service(*arguments)
        self.assertEqual(self.request("Activate", "{}").returncode, 0)
        return process

    def call(self, destination, path, method, *arguments):
        return subprocess.run(["gdbus", "call", "--session", "--dest", destination,
                               "--object-path", path, "--method", method, *arguments],
                              env=self.environment(), capture_output=True, check=False)

    def request(self, method, *arguments):
        return self.call("org.zelmora.Zelmora", "/org/zelmora/Zelmora",
                         "org.freedesktop.Application." + method, *arguments)

    def test_a_second_start_hands_its_paths_over(self):
        first = self.first()
        names = [b"a.txt", b"\x95\x5c \xff%41#.txt", "日本.txt".encode(), b"-x.txt"]
        for name in names:
            self.write(name, KANJI)
        self.assert_ends(self.zelmora(*names[:3]))
        self.assert_converted(*names[:3])
        self.assert_ends(self.zelmora("--", "./" + os.fsdecode(names[3])))
        self.assert_converted(names[3])
        self.assert_ends(self.zelmora())  # only brings it to the front
        self.assertIsNone(first.poll())
        first.send_signal(signal.SIGTERM)
        self.assert_ends(first)
        # Now there is a place for another.
        self.write(b"a.txt", KANJI)
        again = self.first(b"a.txt")
        self.assert_converted(b"a.txt")
        again.send_signal(signal.SIGINT)
        self.assert_ends(again)

    def test_ten_starts_at_once_are_one_program_and_lose_nothing(self):
        names = [b"%d.txt" % n for n in range(10)]
        for name in names:
            self.write(name, KANJI)
        starts = [self.zelmora(name) for name in names]
        self.assert_converted(*names)
        self.assertTrue(until(lambda: sum(each.poll() is None for each in starts) == 1))

    def test_a_service_waits_for_what_it_was_started_for(self):
        self.write(b"a.txt", KANJI)
        self.settings(displayManualAlert=False, autoQuit=True)
        service = self.service("--gapplication-service")
        self.request("Open", f"['file://{os.fsdecode(self.path(b'a.txt'))}']", "{}")
        self.assert_ends(service)  # no question about the manual keeps it
        self.assert_converted(b"a.txt")
        self.assert_ends(self.service("--gapplication-service"))  # for nothing

    def test_one_that_hangs_is_left_alone_and_does_nothing_twice(self):
        log = self.path_of_top(b"log")
        logged = {"createLogFile": True, "logFilePath": os.fsdecode(log)}
        self.settings(**logged)
        hanging = self.first()
        hanging.send_signal(signal.SIGSTOP)
        self.settings(autoQuit=True, **logged)
        self.write(b"a.txt", KANJI)
        self.assert_ends(self.zelmora(b"a.txt"))
        self.assertEqual(self.read(b"a.txt"), UTF8)
        hanging.send_signal(signal.SIGCONT)
        # What is handed over now comes behind what it had not answered.
        self.write(b"b.txt", KANJI)
        self.assert_ends(self.zelmora(b"b.txt"))
        self.assert_converted(b"b.txt")
        self.assertEqual(self.read(log).count(b"/a.txt"), 1)
        self.assertIsNone(hanging.poll())


console_case.main()
