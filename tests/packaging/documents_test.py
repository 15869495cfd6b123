#!/usr/bin/env python3
"""Man pages and completions know every option of --help, no other, and every setting.

    documents_test.py SOURCE_FOLDER PROGRAM
"""

import pathlib
import plistlib
import re
import subprocess
import sys
import unittest

SOURCE, PROGRAM = pathlib.Path(sys.argv.pop(1)), sys.argv.pop(1)
PACKAGING = SOURCE / "packaging"
# Where the options of a text in this form are, the setting names being anywhere in it.
PATTERNS = {
    "man/zelmora-convert.1.scd": r"(?:^|, )\*--([a-z-]+)\*",
    "man/ja/zelmora-convert.1.scd": r"(?:^|, )\*--([a-z-]+)\*",
    "completions/zelmora-convert.bash": r"--([a-z-]+)",
    "completions/_zelmora-convert": r"--([a-z-]+)",
    "completions/zelmora-convert.fish": r"^complete .* -l ([a-z-]+)",
}


class DocumentsTest(unittest.TestCase):
    def test_options_are_those_of_the_help_texts(self):
        for language in ("C", "ja_JP.UTF-8"):
            text = subprocess.run([PROGRAM, "--help"], env={"LC_ALL": language}, check=True,
                                  capture_output=True, encoding="utf-8").stdout
            options = set(re.findall(r"(?<!zelmora-convert )--([a-z][a-z-]*)", text))
            self.assertIn("encoding", options)
            for name, pattern in PATTERNS.items():
                found = re.findall(pattern, (PACKAGING / name).read_text(encoding="utf-8"), re.M)
                self.assertEqual(set(found), options, f"{name}, compared with --help in {language}")

    def test_every_setting_is_there(self):
        keys = plistlib.loads((SOURCE / "resources/UserDefaults.plist").read_bytes())
        for name in PATTERNS:
            text = (PACKAGING / name).read_text(encoding="utf-8")
            missing = [key for key in keys if not re.search(rf"\b{key}\b", text)]
            self.assertEqual(missing, [], name)


unittest.main()
