#!/usr/bin/python3
"""Whole folders through zelmora-convert: exact bytes, and what becomes of files that make trouble.

    conversion_test.py PROGRAM
"""

import os
import resource
import socket
import subprocess

import console_case
from console_case import TEXT

SOURCE = TEXT.encode("cp932")
CONVERTED = TEXT.encode()

PROSE = "".join(f"第{n}章。吾輩は猫である。名前はまだ無い。表示能力ソート、①～Ⅲ。\r\n" for n in range(200))
HTML = ('<html>\r\n<head>\r\n<meta http-equiv="Content-Type" content="text/html; charset={}">\r\n'
        "<title>町の図書館</title>\r\n</head>\r\n<body>" + PROSE + "</body>\r\n</html>\r\n")
XML = '<?xml version="1.0" encoding="{}"?>\r\n<本>' + PROSE + "</本>\r\n"
CSS = '@charset "{}";\r\n/* ' + PROSE + ' */\r\nh1 {{ font-family: "ＭＳ 明朝" }}\r\n'


# Two more bytes, and no temporary name fits into what a file system takes.
LONGEST = b"\xff" * 249 + b".txt"


def site(codec, charset):
    texts = {b"index.html": HTML, b"news/old/a.htm": HTML, b"data/a.xml": XML, b"style/a.css": CSS,
             b"read me.txt": PROSE, "資料/日本語.txt".encode(): PROSE, b"\x83\x5c/\xff.txt": PROSE}
    return {name: text.format(charset).encode(codec) for name, text in texts.items()}


def limit_file_size():
    """The disk is full, as far as files above 1000 bytes are concerned."""
    resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))


class ConversionTest(console_case.ConsoleCase):
    # Thousands of files, each waited for until it is on the disk, take their time on a real one.
    scratch = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None

    def test_a_site_goes_to_utf_8_and_back_byte_for_byte(self):
        shift_jis, utf_8 = site("cp932", "Shift_JIS"), site("utf-8", "UTF-8")
        for name, contents in shift_jis.items():
            self.write(name, contents)
        self.write(b"photo.jpg", SOURCE)
        for options, expected in [("--encoding utf-8", utf_8), ("--encoding shift_jis", shift_jis),
                                  ("--encoding keep", shift_jis)]:
            run = self.convert(*options.split(), ".")
            self.assert_run(run, 0, b"%d converted, 0 failed" % len(expected))
            tree = self.tree()
            self.assertEqual(tree.pop(b"photo.jpg"), SOURCE)
            self.assertEqual(sorted(tree), sorted(expected))
            for name in expected:
                self.assertEqual(tree[name], expected[name], (options, name))

    def test_detect_tells_what_each_file_is_and_changes_nothing(self):
        prose = PROSE.replace("①～Ⅲ", "")
        for name, contents, words in [
            (b"1.txt", PROSE.encode("cp932"), "Shift_JIS none no CRLF"),
            (b"2.txt", prose.encode("iso2022_jp").replace(b"\r", b""), "ISO-2022-JP none no LF"),
            (b"3.txt", b"\xef\xbb\xbf" + prose.replace("\r\n", "\u2028").encode(), "UTF-8 none yes LS"),
            (b"4.txt", PROSE.encode("utf-16-be"), "UTF-16 big no CRLF"),
            (b"\x83\x5c\n\t\x1b.txt", prose.encode("euc_jp"), "EUC-JP none no CRLF"),
        ]:
            with self.subTest(name=name):
                self.write(name, contents)
                run = self.run_console("--detect", name)
                self.assert_run(run, 0)
                shown = "\\x83\\\\n\\t\\x1B.txt" if name[:1] == b"\x83" else name.decode()
                path = os.fsdecode(self.path(b"")) + shown
                self.assertEqual(run.stdout.decode(), "\t".join([path, *words.split()]) + "\n")
                self.assertEqual(run.stderr, b"")
                self.assertEqual(self.read(name), contents)
        run = self.run_console("--detect", ".", "nothing.txt")
        self.assert_run(run, 1)
        self.assertEqual(run.stdout.count(b"\n"), 5)

    def test_what_makes_trouble_fails_alone(self):
        too_long = b"\xff" * 251 + b".txt"
        files = {b"a.txt": SOURCE, b"a#0.txt": SOURCE, b"sub/b.txt": SOURCE, LONGEST: SOURCE,
                 b"empty.txt": b"", b"dot.": SOURCE, b"none": SOURCE, b".hidden.txt": SOURCE,
                 b"bad.txt": b"\xff" * 100, b"esc\x1b[31m\n\xff.txt": b"\xff" * 100, too_long: SOURCE}
        for name, contents in files.items():
            self.write(name, contents)
        os.mkfifo(self.path(b"fifo.txt"))
        os.symlink("loop.txt", self.path(b"loop.txt"))
        os.symlink("nowhere", self.path(b"dangling.txt"))
        os.symlink(".", self.path(b"cycle"))
        with socket.socket(socket.AF_UNIX) as server:
            server.bind(os.path.relpath(self.path(b"socket.txt")))
        names = sorted(os.listdir(self.folder))

        run = self.convert(".")
        self.assert_run(run, 1, b"5 converted, 7 failed")
        for name in (b"a.txt", b"a#0.txt", b"sub/b.txt", LONGEST):
            files[name] = CONVERTED
        self.assertEqual(self.tree(), files)
        self.assertEqual(sorted(os.listdir(self.folder)), names)
        self.assertEqual(run.stderr.count(b"A file could not be converted.\n"), 7)
        for name, reason in [(b"esc\\x1B[31m\\n\\xFF.txt", b"Its bytes are not valid "),
                             (b"fifo.txt", b"It is not a file that holds text."),
                             (b"\\xFF" * 251 + b".txt", b"The converted text cannot be written: File name too long")]:
            self.assertIn(self.path(name) + b" was not converted. " + reason, run.stderr)

    def test_a_vanished_file_fails_and_a_taken_name_is_left_alone(self):
        for name in (b"a.txt", b"b.txt", b"b.md"):
            self.write(name, SOURCE)
        run = self.convert("--set", "convertExtension=1", "--set", "extensionOfDstFiles=md",
                           "a.txt", "a.txt", "b.txt")  # a.txt has gone when it is its turn again
        self.assert_run(run, 1, b"2 converted, 1 failed")
        self.assertIn(b"a.txt was not converted. It cannot be read: No such file", run.stderr)
        self.assertEqual(self.tree(), {b"a.md": CONVERTED, b"b.md": SOURCE, b"b#0.md": CONVERTED})

    def test_closed_standard_descriptors_are_nobodys_files(self):
        # Each message about a bad file comes while the next good one is written.
        files = {b"%d.txt" % n: b"\xff" if n % 2 else SOURCE * 200 for n in range(2000)}
        for name, contents in files.items():
            self.write(name, contents)
        for option in ("--no-backup", "--detect"):
            run = subprocess.Popen(self.command(option, self.folder), env=self.environment(),
                                   preexec_fn=lambda: os.closerange(0, 3))
            self.assertEqual(run.wait(60), 1)
        self.assertTrue(self.tree() == {name: b"\xff" if contents == b"\xff" else CONVERTED * 200
                                        for name, contents in files.items()})

    def test_a_full_disk_leaves_every_source_as_it_was(self):
        large = "東京都\r\n".encode("cp932") * 500
        self.write(b"large.txt", large)
        self.write(b"small.txt", SOURCE)
        run = self.convert("--encoding", "utf-16", ".", preexec_fn=limit_file_size)
        self.assert_run(run, 1, b"1 converted, 1 failed")
        self.assertEqual(self.tree(), {b"large.txt": large, b"small.txt": TEXT.encode("utf-16-le")})
        self.assertIn(b"large.txt was not converted. The converted text cannot be written: "
                      b"File too large.", run.stderr)

        run = self.run_console("large.txt", preexec_fn=limit_file_size)  # now the backup fails
        self.assert_run(run, 1, b"0 converted, 1 failed")
        self.assertEqual(self.read(b"large.txt"), large)
        self.assertEqual(os.listdir(os.path.join(self.home, b"Zelmora Backup")), [])


console_case.main()
