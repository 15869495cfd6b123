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

FILES = f"""
bin/zelmora bin/zelmora-convert
share/applications/{ID}.desktop
share/bash-completion/completions/zelmora share/bash-completion/completions/zelmora-convert
share/dbus-1/services/{ID}.service
share/doc/zelmora/LICENSE share/doc/zelmora/README.md
share/fish/vendor_completions.d/zelmora.fish share/fish/vendor_completions.d/zelmora-convert.fish
share/icons/hicolor/scalable/apps/{ID}.svg
share/man/ja/man1/zelmora.1 share/man/ja/man1/zelmora-convert.1
share/man/man1/zelmora.1 share/man/man1/zelmora-convert.1
share/metainfo/{ID}.metainfo.xml
share/zelmora/Preferences.ui share/zelmora/Progress.ui share/zelmora/UserDefaults.plist
share/zelmora/en.lproj/Localizable.strings share/zelmora/en.lproj/Manual.pdf
share/zelmora/ja.lproj/Localizable.strings share/zelmora/ja.lproj/Manual.pdf
share/zsh/site-functions/_zelmora share/zsh/site-functions/_zelmora-convert
"""


class InstallTest(unittest.TestCase):
    def setUp(self):
        self.top = pathlib.Path(tempfile.mkdtemp(prefix="zelmora-"))
        self.addCleanup(shutil.rmtree, self.top)
        installed = self.top / "first"
        subprocess.run([CMAKE, "--install", BUILD, "--prefix", installed], check=True,
                       stdout=subprocess.DEVNULL)
        # Nothing but the bus's service may depend on the place that it was installed to.
        self.prefix = installed.rename(self.top / "moved")

    def test_files_are_in_the_usual_places(self):
        found = [str(path.relative_to(self.prefix)) for path in self.prefix.rglob("*")
                 if path.is_file()]
        self.assertEqual(sorted(found), sorted(FILES.split()))
        for path in self.prefix.rglob("*"):
            self.assertGreater(path.stat().st_size, 0, path)

    def test_the_bus_is_told_where_the_program_is(self):
        service = self.prefix / f"share/dbus-1/services/{ID}.service"
        self.assertIn(f"\nExec={self.top}/first/bin/zelmora --gapplication-service\n",
                      service.read_text(encoding="utf-8"))

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
