#!/usr/bin/python3
"""Checks the mapping tables against sources that they were not derived from.

    text_tables_test.py DATA_FOLDER

The sources: the C library's iconv, nkf (Microsoft's and Unix systems' EUC-JP), and the CMaps of
poppler-data (Macintosh Japanese). Every difference stands here with its reason.
"""

import re
import subprocess
import sys
import unittest
from pathlib import Path

CMAPS = Path("/usr/share/poppler/cMap/Adobe-Japan1")


def characters(points):
    return "".join(chr(int(point, 16)) for point in re.findall(r"[0-9A-F]{4,}", points))


def read_table(name):
    """What each code reads as, and what each text is written as."""
    reads, writes = {}, {}
    for line in (DATA / f"{name}.txt").read_text().splitlines():
        if not line.startswith("#"):
            code, points, *mark = line.split("\t")
            reads[bytes.fromhex(code)] = characters(points)
            if not mark:
                assert characters(points) not in writes, line
                writes[characters(points)] = bytes.fromhex(code)
    return reads, writes


def converted(items, *command):
    """What `command` makes of each item, on lines of their own; of what it cannot convert, nothing."""
    lines = subprocess.run(command, input=b"".join(item + b"\n" for item in items), capture_output=True).stdout
    results = lines.split(b"\n")[:-1]
    assert len(results) == len(items), command
    return dict(zip(items, results))


def iconv_reads(codes, charset):
    texts = converted([code for code in codes if code != b"\n"], "iconv", "-c", "-f", charset, "-t", "UTF-8")
    return {b"\n": "\n"} | {code: text.decode() for code, text in texts.items()}


def nkf_reads(codes, charset):
    texts = converted(list(codes), "nkf", f"--ic={charset}", "--oc=UTF-8", "-m0", "-x")
    return {code: text.decode() for code, text in texts.items()}


def cmap(name):
    table = {}
    for line in (CMAPS / name).read_text().splitlines():
        fields = [bytes.fromhex(field) for field in re.findall(r"<([0-9A-Fa-f]+)>", line)]
        if not line.startswith("<"):
            continue
        first, last, text = fields[0], fields[-2], fields[-1].decode("utf-16be")
        for offset in range(int.from_bytes(last, "big") - int.from_bytes(first, "big") + 1):
            code = (int.from_bytes(first, "big") + offset).to_bytes(len(first), "big")
            table[code] = text[:-1] + chr(ord(text[-1]) + offset)
    return table


class TextTablesTest(unittest.TestCase):
    maxDiff = None

    def assert_same(self, table, other, explained):
        """explained: code in hexadecimal -> what the other source has instead."""
        different = {code.hex().upper(): other.get(code) for code in table if table[code] != other.get(code)}
        self.assertEqual(different, explained)

    def test_code_page_932(self):
        reads, writes = read_table("code_page_932")
        self.assertEqual(len(reads), 128 + 63 + 5 + 6879 + 83 + 374 + 388 + 1880)
        # The C library lacks Microsoft's assignments for these single bytes.
        singles = {"80": "", "A0": "", "FD": "", "FE": "", "FF": ""}
        self.assert_same(reads, iconv_reads(reads, "CP932"), singles)
        texts = {text.encode(): code for text, code in writes.items()
                 if text != "\n" and code.hex().upper() not in singles}
        self.assertEqual(converted(list(texts), "iconv", "-c", "-f", "UTF-8", "-t", "CP932"), texts)

    def test_jis_x_0208(self):
        reads = read_table("jis_x_0208")[0]
        self.assertEqual(len(reads), 6879)
        self.assert_same(reads, iconv_reads(reads, "EUC-JP"), {})

    def test_jis_x_0212(self):
        reads = read_table("jis_x_0212")[0]
        self.assertEqual(len(reads), 6067)
        # The character is TILDE. The C library makes it U+FF5E, which we keep for the wave dash.
        self.assert_same(reads, iconv_reads(reads, "EUC-JP"), {"8FA2B7": "\uff5e"})

    def test_jis_extensions(self):
        extensions = read_table("jis_extensions")[0]
        self.assertEqual(len(extensions), 83 + 374 + 106)
        two_bytes = {code: text for code, text in extensions.items() if code[0] != 0x8F}
        three_bytes = {code: text for code, text in extensions.items() if code[0] == 0x8F}
        # We follow JIS X 0208 for the not sign.
        self.assert_same(two_bytes, nkf_reads(two_bytes, "CP51932"), {"FCFB": "\uffe2"})
        self.assert_same(three_bytes, nkf_reads(three_bytes, "eucJP-ms"), {})

    def test_mac_os_roman(self):
        reads = read_table("mac_os_roman")[0]
        self.assertEqual(len(reads), 256)
        # The C library still has the Greek letter of the first version, and its own private use.
        self.assert_same(reads, iconv_reads(reads, "MACINTOSH"), {"C6": "\u0394", "F0": "\ue01e"})

    def test_mac_japanese(self):
        reads = read_table("mac_japanese")[0]
        listed = {code: text for code, text in reads.items() if len(code) == 1 or code[0] < 0xF0}
        # The CMaps follow the vendor's earlier table: another dash and overline, and no mark that
        # makes a character vertical or alternate.
        explained = {"8150": "\u203e", "815C": "\u2015", "8645": "\u217f", "864B": "\u210a", "86D3": "\u27a1",
                     "EB50": "\u203e", "EB63": "\u22ef"}
        for code, text in listed.items():
            if text[1:] in ("\uf87e", "\uf87f"):
                explained.setdefault(code.hex().upper(), text[0])
        self.assertEqual(len(explained), 40)
        theirs = {**cmap("90pv-RKSJ-UCS2C"), **cmap("90pv-RKSJ-UCS2")}
        self.assert_same(listed, theirs, explained)
        self.assertLessEqual(theirs.keys(), listed.keys())

    def test_mac_japanese_user_defined_rows(self):
        # No other source here lists them; code page 932 has the same rows as far as they go.
        reads = read_table("mac_japanese")[0]
        microsoft = read_table("code_page_932")[0]
        rows = {code: text for code, text in reads.items() if len(code) == 2 and code[0] >= 0xF0}
        common = {code: text for code, text in rows.items() if code[0] <= 0xF9}
        self.assertEqual(common, {code: text for code, text in microsoft.items()
                                  if len(code) == 2 and 0xF0 <= code[0] <= 0xF9})
        self.assertEqual("".join(rows.values()), "".join(map(chr, range(0xE000, 0xE98C))))


if __name__ == "__main__":
    DATA = Path(sys.argv.pop(1))
    unittest.main()
