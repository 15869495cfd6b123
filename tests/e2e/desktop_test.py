#!/usr/bin/env python3
"""The desktop program as a person meets it: on a display, by mouse and keyboard only.

Usage: desktop_test.py TOOLS_FOLDER ZELMORA DRAG_SOURCE
"""

import os
import plistlib
import sys
import unittest

TOOLS, ZELMORA, DRAG_SOURCE = (os.path.abspath(argument) for argument in sys.argv[1:4])
sys.path.insert(0, TOOLS)

from virtual_desktop import DEADLINE, VirtualDesktop, wait_until  # noqa: E402

MAIN, PROGRESS, PREFERENCES, OPEN_PANEL = (
    "Zelmora", "Progress — Zelmora", "Preferences — Zelmora", "Choose What to Convert — Zelmora")
CODECS = "shift_jis", "euc_jp", "iso2022_jp", "utf-8", "utf-8-sig", "utf-16", "utf-32"


def read(path):
    """What is in the file; None when it is not there, as in the moment before its renaming."""
    try:
        with open(path, "rb") as file:
            return file.read()
    except FileNotFoundError:
        return None


class DesktopTest(unittest.TestCase):
    def setUp(self):
        self.desktop = self.enterContext(VirtualDesktop())
        self.settings = os.path.join(self.desktop.folder("home/.config/zelmora"), "zelmora.plist")
        with open(self.settings, "wb") as file:  # not the first launch
            plistlib.dump({"displayManualAlert": True}, file)

    def start(self, *paths):
        """Starts Zelmora and answers its main window."""
        self.zelmora = self.desktop.start([ZELMORA, *paths])
        return self.desktop.wait_for_window(MAIN)

    def start_drag(self, folder):
        """Presses the button on a folder to drag."""
        self.source_says = os.path.join(self.desktop.top, "source says")
        with open(self.source_says, "wb") as output:
            self.desktop.start([DRAG_SOURCE, folder], stdout=output)
        window = self.desktop.wait_for_window("Drag from here")
        self.wait_for_source("ready")
        self.desktop.move_mouse(window, 40, 40)
        self.desktop.press_button()

    def wait_for_source(self, line):
        """Until the drag source says so."""
        wait_until(lambda: line.encode() in read(self.source_says).splitlines(), f"{line} from the drag source")

    def hover(self, window):
        """Moves on in small steps, as a hand does."""
        for step in range(20):
            self.desktop.move_mouse(window, 100 + 4 * step, 120)

    def assert_quits(self):
        self.assertEqual(self.zelmora.wait(DEADLINE), 0)

    def settings_become(self, key, value):
        """Waits until the saved settings say so."""
        def saved():
            plist = read(self.settings)
            return plist is not None and plistlib.loads(plist).get(key) == value
        wait_until(saved, f"{key} = {value} in the saved settings")

    def test_a_dropped_folder_is_converted(self):
        folder = self.desktop.folder("letters")
        sources = {}
        for number in range(2000):
            name = f"{number % 40}/{number}.txt"
            text = f"{number}通目の手紙。\r\n表示と能力、ソフトウェア。\n"
            sources[name] = text, text.encode(CODECS[number % len(CODECS)])
            os.makedirs(os.path.dirname(os.path.join(folder, name)), exist_ok=True)
            with open(os.path.join(folder, name), "wb") as file:
                file.write(sources[name][1])

        window = self.start()
        self.start_drag(folder)
        self.hover(window)
        self.wait_for_source("accepted")
        self.desktop.release_button()
        self.wait_for_source("copied")

        def shows_progress():
            return PROGRESS in self.desktop.windows().values()
        left = list(sources)

        def all_are_converted():
            while left and read(os.path.join(folder, left[-1])) == sources[left[-1]][0].encode():
                left.pop()
            return not left
        wait_until(shows_progress, "the progress window")
        wait_until(all_are_converted, lambda: f"{len(left)} files, one of them {left[-1]}")
        wait_until(lambda: not shows_progress(), "the progress window to close")

        backup = os.path.join(self.desktop.home, "Zelmora Backup/letters")
        for name, (_, before) in sources.items():
            self.assertEqual(read(os.path.join(backup, name)), before, name)
        found = sum(len(names) for _, _, names in os.walk(folder))
        self.assertEqual(found, len(sources))

        self.desktop.click(window, 20, 10)      # File, the first of the menu bar
        self.desktop.click(self.desktop.wait_for_menu(), 20, -12)   # Quit, its last item
        self.assert_quits()

    def test_everything_is_reached_by_keyboard(self):
        os.remove(self.settings)
        self.zelmora = self.desktop.start([ZELMORA])
        window = next(iter(wait_until(self.desktop.windows, "a window")))
        question = self.desktop.wait_for_window(but=[window])  # about the manual, at the first launch
        self.desktop.key("Escape")
        self.desktop.wait_for_closing(question)
        self.desktop.wait_for_window(MAIN)
        self.desktop.key("ctrl+q")
        self.assert_quits()
        self.settings_become("displayManualAlert", True)

        self.start()
        self.desktop.key("ctrl+o")  # which a question in front of the window would keep away
        panel = self.desktop.wait_for_window(OPEN_PANEL)
        self.desktop.key("Escape")
        self.desktop.wait_for_closing(panel)
        self.desktop.wait_for_window(MAIN)

        self.desktop.key("ctrl+comma")
        preferences = self.desktop.wait_for_window(PREFERENCES)
        self.desktop.key("alt+t")     # the page about text
        self.desktop.key("alt+e")     # the encoding: UTF-8
        self.desktop.key("Down")
        self.settings_become("encodingCode", 5)
        self.desktop.key("Escape")
        self.desktop.wait_for_closing(preferences)

        self.desktop.wait_for_window(MAIN)
        self.desktop.key("ctrl+q")
        self.assert_quits()


unittest.main(argv=[sys.argv[0], *sys.argv[4:]])
