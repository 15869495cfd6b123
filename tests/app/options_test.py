#!/usr/bin/python3
"""The command line of zelmora-convert: what each option does to a file, and what is refused.

    options_test.py PROGRAM
"""

import os
import plistlib
import pty
import termios
import threading

import console_case
from console_case import TEXT

# The IBM extension, not its copy in the NEC rows, as Microsoft's own encoder writes it.
SOURCE = TEXT.encode("cp932").replace(b"\xee\xe0", b"\xfb\xfc")
BE_MARK, LE_MARK = b"\xfe\xff", b"\xff\xfe"

# Options, and what the Shift_JIS text becomes. Without any: UTF-8, no mark, line breaks kept.
TEXTS = [
    ("", TEXT.encode()),
    ("--encoding keep", SOURCE),
    ("--encoding=shift_jis --line-break lf", SOURCE.replace(b"\r", b"")),
    ("--encoding utf-8 --bom", b"\xef\xbb\xbf" + TEXT.encode()),
    ("--encoding utf16", TEXT.encode("utf-16-le")),
    ("--encoding utf-16 --byte-order big --bom", BE_MARK + TEXT.encode("utf-16-be")),
    ("--encoding utf-32 --byte-order little --bom", LE_MARK + b"\0\0" + TEXT.encode("utf-32-le")),
    ("--line-break cr --katakana", TEXT.replace("\r\n", "\r").replace("ﾊﾟﾝ", "パン").encode()),
    ("--mapping windows --encoding shift_jis", SOURCE),
    # Settings by name, and the last of those that contradict each other.
    ("--set encodingCode=5 --set littleEndian=NO", TEXT.encode("utf-16-be")),
    ("--set encodingCode=5 --encoding utf-8", TEXT.encode()),
    ("--encoding utf-8 --set encodingCode=5", TEXT.encode("utf-16-le")),
    ("--bom --no-bom", TEXT.encode()),
    # Which files.
    ("--ext=", None),
    ("--ext html,TXT", TEXT.encode()),
]

# Refused with status 2 before anything is touched; what the first line says of it.
REFUSED = [
    (["--set", "nothing=1"], "Unknown setting: nothing"),
    (["--set", "putBOM"], "Not KEY=VALUE: putBOM"),
    (["--set", "putBOM=maybe"], "Bad value for putBOM: maybe"),
    (["--encoding", "latin1"], "Bad value for --encoding: latin1"),
    (["--line-break="], "Bad value for --line-break: "),
    (["--ext", "txt,"], "Bad value for --ext: txt,"),
    (["--backup", ""], "Bad value for --backup: "),
    (["-x"], "Unknown option: -x"),
    (["--bom=NO"], "Option takes no value: --bom"),
    (["--bom", "--bogus", "--encoding", "utf-8"], "Unknown option: --bogus"),
]

# Names that a command line could take for something else.
PATHS = ["[a,b].txt", "{}", "%%", "-5.txt", "--help", "--", "a b;$c.txt", "日本.txt"]


def read_terminal(control):
    try:
        return os.read(control, 65536)
    except OSError:  # nobody has it open any more
        return b""


class OptionsTest(console_case.ConsoleCase):
    def test_options_decide_what_a_text_becomes(self):
        for options, expected in TEXTS:
            with self.subTest(options=options):
                self.write(b"a.txt", SOURCE)
                run = self.convert(*options.split(), "a.txt")
                self.assert_run(run, 0, b"%d converted, 0 failed" % (expected is not None))
                self.assertEqual((run.stdout, run.stderr.count(b"\n")), (b"", 1))
                self.assertEqual(self.tree(), {b"a.txt": expected or SOURCE})

    def test_what_makes_no_sense_is_refused(self):
        self.write(b"a.txt", SOURCE)
        for options, message in REFUSED:
            with self.subTest(options=options):
                run = self.run_console(*options, "--save", "--", "a.txt")
                self.assert_run(run, 2)
                self.assertEqual(run.stderr.decode(), f"zelmora-convert: {message}\nzelmora-convert: "
                                 "Try 'zelmora-convert --help'.\n")
                self.assertEqual(self.tree(), {b"a.txt": SOURCE})
                self.assertEqual(os.listdir(self.home), [])
        for options in (["--detect"], ["a.txt", "--log"]):  # no path, no value
            self.assert_run(self.run_console(*options), 2)

    def test_a_path_is_taken_byte_for_byte(self):
        for name in [os.fsencode(each) for each in PATHS] + [b"\xff.txt", b"\x83\x5c.txt"]:
            with self.subTest(name=name):
                self.write(name, SOURCE)
                options = ["--set", "allowConvertNoNameExtension=YES"]
                self.assert_run(self.convert(*options, "--", name), 0, b"1 converted, 0 failed")
                self.assertEqual(self.tree(), {name: TEXT.encode()})
                os.remove(self.path(name))

    def test_the_parent_of_a_link_is_that_of_what_it_leads_to(self):
        self.write(b"real/a.txt", SOURCE)
        self.write(b"a.txt", SOURCE)
        os.mkdir(self.path(b"real/deep"))
        os.symlink("real/deep", self.path(b"link"))
        self.assert_run(self.convert("--log", "log", "real//../link/.././a.txt"), 0, b"1 converted, 0 failed")
        self.assertEqual((self.read(b"real/a.txt"), self.read(b"a.txt")), (TEXT.encode(), SOURCE))
        self.assertIn(b" File:" + self.path(b"real/a.txt") + b" ", self.read(b"log"))

    def test_paths_that_are_not_there_fail_and_the_others_are_converted(self):
        for name in ("", "nothing", "a.txt/b.txt", "[b.txt]"):
            with self.subTest(name=name):
                self.write(b"a.txt", SOURCE)
                self.write(b"b.txt", SOURCE)
                run = self.convert(name, "a.txt")
                self.assert_run(run, 1, b"1 converted, 1 failed")
                self.assertIn(b" was not converted. It cannot be read: No", run.stderr)
                self.assertEqual(self.tree(), {b"a.txt": TEXT.encode(), b"b.txt": SOURCE})

    def test_saved_settings_hold_until_the_command_line_says_otherwise(self):
        self.assert_run(self.run_console("--save", "--encoding", "utf-16", "--log", "~/log",
                                         "--backup", "copies", "--set", "autoBackup=NO"), 0)
        with open(self.saved_settings, "rb") as file:
            self.assertEqual(plistlib.load(file), {
                "encodingCode": 5, "autoBackup": False, "createLogFile": True,
                "backupDataDir": os.fsdecode(self.path(b"copies")), "logFilePath": "~/log"})
        for options, expected in [([], "utf-16-le"), (["--encoding", "utf-8"], "utf-8"),
                                  (["--byte-order", "big"], "utf-16-be"), ([], "utf-16-le"),
                                  (["--save", "--encoding", "euc-jp"], "euc_jp"), ([], "euc_jp")]:
            with self.subTest(options=options):
                self.write(b"a.txt", "東京\r\n吾輩は猫である\r\n".encode("cp932"))
                self.assert_run(self.run_console(*options, "a.txt"), 0)
                self.assertEqual(self.read(b"a.txt"), "東京\r\n吾輩は猫である\r\n".encode(expected))

    def test_damaged_saved_settings_are_reported_and_kept(self):
        os.makedirs(os.path.dirname(self.saved_settings))
        self.write(self.saved_settings, b"<plist><dict><key>")
        self.write(b"a.txt", SOURCE)
        run = self.convert("a.txt")
        self.assert_run(run, 0, b"1 converted, 0 failed")
        self.assertIn(b"zelmora.plist", run.stderr.splitlines()[0])
        self.assertEqual(self.read(b"a.txt"), TEXT.encode())

    def test_backup_and_log(self):
        self.write(b"site/a.txt", SOURCE)
        for round_number in (1, 2):
            run = self.run_console("--log", "new/a.log", "--backup", "../copies", "site")
            self.assert_run(run, 0, b"1 converted, 0 failed")
        copies = self.path_of_top(b"copies")
        self.assertEqual(sorted(os.listdir(copies)), [b"site", b"site1"])
        self.assertEqual(self.read(os.path.join(copies, b"site/a.txt")), SOURCE)
        self.assertEqual(self.read(os.path.join(copies, b"site1/a.txt")), TEXT.encode())
        lines = self.read(b"new/a.log").decode().splitlines()
        self.assertEqual([line.split(" ")[2:4] for line in lines],
                         [["Backup", "Success"], ["Conversion", "Success"]] * 2)
        self.assertIn("Encoding:Shift_JIS->UTF-8", lines[1])

    def test_lost_characters_are_counted_and_reported(self):
        text = "表\r\nか\u3099é\n🐱, 表\u3000🐱"
        self.write(b"a\t.txt", text.encode())
        self.write(b"b.txt", SOURCE)
        for options, last_line in [(["--report", "lost.tsv"], b"2 converted, 0 failed, 3 characters not kept"),
                                   (["--report=lost.tsv", "--encoding=utf-8"], None)]:
            before = self.tree()
            run = self.convert("--encoding", "shift_jis", *options, "a\t.txt", "b.txt")
            self.assert_run(run, 0 if last_line else 2, last_line)
            if not last_line:
                self.assertIn(b"this exists: " + self.path(b"lost.tsv"), run.stderr)
                self.assertEqual(self.tree(), before)
        run = self.convert("--report", "nowhere/lost.tsv", "b.txt")
        self.assert_run(run, 1, b"0 converted, 1 failed")  # without what was asked for
        self.assertEqual(self.tree(), before)
        self.assertEqual(self.read(b"a\t.txt").decode("cp932"), "表\r\nがe\n?, 表\u3000?")
        name = self.path(b"a\\t.txt").decode()
        self.assertEqual([line.split("\t") for line in self.read(b"lost.tsv").decode().splitlines()],
                         [[name, "2", "3", "U+00E9", "e"], [name, "3", "1", "U+1F431", "?"],
                          [name, "3", "6", "U+1F431", "?"]])

    def test_what_is_said(self):
        self.write(b"a.txt", SOURCE)
        self.assertEqual(self.convert("--quiet", "a.txt").stderr, b"")
        with open("/dev/full", "wb") as full:
            self.assert_run(self.run_console("--detect", "a.txt", stdout=full), 1)

    def test_a_terminal_shows_progress_on_one_line_that_fits(self):
        for number in range(300):
            self.write(b"\xe6\x97\xa5%d.txt" % number, SOURCE)
        self.write(b"bad.txt", b"\xff")
        control, terminal = pty.openpty()
        termios.tcsetwinsize(terminal, (24, 45))
        shown = bytearray()
        reader = threading.Thread(target=lambda: shown.extend(b"".join(iter(lambda: read_terminal(control), b""))))
        reader.start()
        self.assert_run(self.convert(".", language="ja", stderr=terminal), 1)
        os.close(terminal)
        reader.join()
        *frames, rest = shown.decode().split("\r\x1b[K")[1:]
        self.assertEqual(rest, "変換 300 件、失敗 1 件\r\n")
        message = next(frame for frame in frames if "\n" in frame)  # stands above the line
        self.assertRegex(message, r"^[^\[]*/bad\.txt[^\[]*\r\n$")
        for frame in set(frames) - {message}:
            self.assertLess(sum(1 if character.isascii() else 2 for character in frame), 45, frame)
            self.assertRegex(frame, r"^(\[#*\.*\] \d+% [^\n]*)?$")


console_case.main()
