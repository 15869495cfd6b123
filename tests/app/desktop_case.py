"""What the tests of zelmora share: a user without a display, without a question about the manual.

A test file ends in console_case.main(), as those of zelmora-convert do.
"""

import os
import plistlib
import subprocess
import time

import console_case

KANJI, UTF8 = "表示\n".encode("cp932"), "表示\n".encode()


def until(condition):
    """Waits for what other processes do; says whether it came."""
    end = time.monotonic() + 30
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.02)
    return True


class DesktopCase(console_case.ConsoleCase):
    bus = "unix:path=/nowhere"

    def setUp(self):
        super().setUp()
        self.settings()

    def settings(self, **values):
        """The saved settings: no backup, no question about the manual, and these."""
        os.makedirs(os.path.dirname(self.saved_settings), exist_ok=True)
        with open(self.saved_settings, "wb") as file:
            plistlib.dump({"autoBackup": False, "displayManualAlert": True, **values}, file)

    def environment(self, language="C"):
        sanitizers = {name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}
        return {**super().environment(language), **sanitizers, "QT_QPA_PLATFORM": "offscreen",
                "DBUS_SESSION_BUS_ADDRESS": self.bus}

    def start(self, command, **options):
        process = subprocess.Popen(command, cwd=self.folder, stderr=subprocess.DEVNULL, **options)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def zelmora(self, *arguments):
        return self.start(self.command(*arguments), env=self.environment())

    def assert_ends(self, process, status=0):
        self.assertEqual(process.wait(timeout=60), status)

    def assert_converted(self, *names):
        for name in names:
            self.assertTrue(until(lambda: self.read(name) == UTF8), name)
