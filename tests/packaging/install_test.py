#!/usr/bin/env python3
"""What `cmake --install` leaves is complete and works wherever it stands.

    install_test.py CMAKE BUILD_FOLDER
"""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

CMAKE, BUILD = sys.argv.pop(1), sys.argv.pop(1)
ID = "org.zelmora.Zelmora"


class InstallTest(unittest.TestCase):
    def setUp(self):
        self.top = pathlib.Path(tempfile.mkdtemp(prefix="zelmora-"))
        self.addCleanup(shutil.rmtree, self.top)
        installed = self.top / "first"
        subprocess.run([CMAKE, "--install", BUILD, "--prefix", installed], check=True,
                       stdout=subprocess.DEVNULL)
        # Nothing but the bus's service may depend on the place that it was installed to.
        self.prefix = installed.rename(self.top / "moved")

    def test_the_bus_is_told_where_the_program_is(self):
        service = self.prefix / f"share/dbus-1/services/{ID}.service"
        self.assertIn(f"\nExec={self.top}/first/bin/zelmora --gapplication-service\n",
                      service.read_text(encoding="utf-8"))

    def test_the_desktop_finds_it(self):
        for name in (f"applications/{ID}.desktop", f"icons/hicolor/scalable/apps/{ID}.svg", "man/man1/zelmora.1",
                     "zelmora/en.lproj/Manual.pdf", "zelmora/ja.lproj/Manual.pdf"):
            self.assertGreater((self.prefix / "share" / name).stat().st_size, 0)

    def test_the_installed_program_converts_and_speaks_two_languages(self):
        text = "日本語の文章。\n"
        for language, summary in [("C", "1 converted, 0 failed"),
                                  ("ja_JP.UTF-8", "変換 1 件、失敗 0 件")]:
            path = self.top / "a.txt"
            path.write_bytes(text.encode("cp932"))
            run = subprocess.run([self.prefix / "bin/zelmora-convert", path], text=True,
                                 env={"HOME": str(self.top), "LC_ALL": language},
                                 encoding="utf-8", capture_output=True, check=True)
            self.assertEqual((path.read_text(encoding="utf-8"), run.stderr), (text, summary + "\n"))


unittest.main()
