#!/usr/bin/python3
"""Checks the mapping tables against sources that they were not derived from.

    text_tables_test.py DATA_FOLDER

The sources: the C library's iconv, nkf (Microsoft's and Unix systems' EUC-JP), and the CMaps of
poppler-data (Macintosh Japanese). Every difference stands here with its reason.
"""

import ctypes
import re
import subprocess
import sys
import unittest
from pathlib import Path

CMAPS = Path("/usr/share/poppler/cMap/Adobe-Japan1")
SINGLES = [bytes((byte,)) for byte in range(256)]
SHIFT_JIS = [bytes((lead, trail)) for lead in (*range(0x81, 0xA0), *range(0xE0, 0xFD)) for trail in range(0x40, 0x100)]
EUC = [bytes((row, cell)) for row in range(0xA1, 0xFF) for cell in range(0xA1, 0xFF)]
EUC_3 = [b"\x8f" + code for code in EUC]


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


class Iconv:
    """Converts one item at a time, which the command cannot do at this number of items."""

    def __init__(self, to, source):
        self.library = ctypes.CDLL(None)
        self.library.iconv_open.restype = ctypes.c_void_p
        self.library.iconv.argtypes = [ctypes.c_void_p] * 5
        self.library.iconv.restype = ctypes.c_ssize_t
        self.descriptor = self.library.iconv_open(to.encode(), source.encode())
        assert self.descriptor != ctypes.c_void_p(-1).value, f"iconv knows no {to} or {source}"

    def convert(self, data):
        """None when `data` cannot be converted exactly."""
        source, target = ctypes.create_string_buffer(data, len(data)), ctypes.create_string_buffer(32)
        cursor, left = ctypes.c_void_p(ctypes.addressof(source)), ctypes.c_size_t(len(data))
        out, room = ctypes.c_void_p(ctypes.addressof(target)), ctypes.c_size_t(32)
        self.library.iconv(self.descriptor, None, None, None, None)
        arguments = [ctypes.byref(value) for value in (cursor, left, out, room)]
        if self.library.iconv(self.descriptor, *arguments) != 0 or left.value != 0:
            return None
        self.library.iconv(self.descriptor, None, None, *arguments[2:])
        return target.raw[: 32 - room.value]


def iconv_reads(codes, charset):
    converter = Iconv("UTF-16LE", charset)
    texts = {code: converter.convert(code) for code in codes}
    return {code: text.decode("utf-16le") for code, text in texts.items() if text}


def nkf_reads(codes, charset):
    lines = subprocess.run(["nkf", f"--ic={charset}", "--oc=UTF-8", "-m0", "-x"],
                           input=b"".join(code + b"\n" for code in codes), capture_output=True, check=True)
    texts = lines.stdout.decode().splitlines()
    assert len(texts) == len(codes)
    return dict(zip(codes, texts))


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
        """explained: code in hexadecimal -> what the other source has (None: nothing)."""
        different = {code.hex().upper(): other.get(code)
                     for code in {*table, *other} if table.get(code) != other.get(code)}
        self.assertEqual(different, explained)

    def test_code_page_932(self):
        reads, writes = read_table("code_page_932")
        # The C library lacks Microsoft's assignments for these single bytes.
        singles = {"80": None, "A0": None, "FD": None, "FE": None, "FF": None}
        self.assert_same(reads, iconv_reads(SINGLES + SHIFT_JIS, "CP932"), singles)
        encoder = Iconv("CP932", "UTF-16LE")
        for text, code in writes.items():
            if code.hex().upper() not in singles:
                self.assertEqual(encoder.convert(text.encode("utf-16le")), code, f"U+{ord(text):04X}")

    def test_jis_x_0208(self):
        self.assert_same(read_table("jis_x_0208")[0], iconv_reads(EUC, "EUC-JP"), {})

    def test_jis_x_0212(self):
        # The character is TILDE. The C library makes it U+FF5E, which we keep for the wave dash.
        self.assert_same(read_table("jis_x_0212")[0], iconv_reads(EUC_3, "EUC-JP"), {"8FA2B7": "\uff5e"})

    def test_jis_extensions(self):
        extensions = read_table("jis_extensions")[0]
        row_13 = {code: text for code, text in extensions.items() if code[0] == 0xAD}
        self.assert_same(row_13, iconv_reads([code for code in EUC if code[0] == 0xAD], "EUC-JP-MS"), {})
        nec_selected = {code: text for code, text in extensions.items() if 0xF9 <= code[0] <= 0xFC}
        # We follow JIS X 0208 for the not sign.
        self.assert_same(nec_selected, nkf_reads(list(nec_selected), "CP51932"), {"FCFB": "\uffe2"})
        set_3 = {code: text for code, text in extensions.items() if code[0] == 0x8F}
        self.assert_same(set_3, nkf_reads(list(set_3), "eucJP-ms"), {})

    def test_mac_os_roman(self):
        # The C library still has the Greek letter of the first version, and its own private use.
        explained = {"C6": "\u0394", "F0": "\ue01e"}
        self.assert_same(read_table("mac_os_roman")[0], iconv_reads(SINGLES, "MACINTOSH"), explained)

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
        self.assert_same(listed, {**cmap("90pv-RKSJ-UCS2C"), **cmap("90pv-RKSJ-UCS2")}, explained)

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
