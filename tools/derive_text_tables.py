#!/usr/bin/python3
"""Derives the mapping tables in platform/text/data from sources on the machine.

    tools/derive_text_tables.py

Needs Python's own codecs and Perl's Encode. Run it only to change how a table is derived; the
build reads the committed files. tests/platform_text/text_tables_test.py checks them against
sources that they were not derived from.
"""

import subprocess
from pathlib import Path

DATA = Path(__file__).resolve().parent.parent / "platform/text/data"
READ_ONLY = "read-only"

# Prints "code<TAB>code points" for every code of one or two bytes that MacJapanese assigns.
MAC_JAPANESE_DUMP = r"""
use Encode;
my $encoding = find_encoding("MacJapanese");
for my $code (0 .. 0xff, 0x8100 .. 0xffff) {
    my $bytes = $code < 0x100 ? chr $code : pack "n", $code;
    my $rest = $bytes;
    my $text = $encoding->decode($rest, Encode::FB_QUIET);
    next if $rest ne "" || $text eq "" || ($code > 0xff && $code < 0x8140);
    next if $code > 0xff && $encoding->decode(my $lead = substr($bytes, 0, 1), Encode::FB_QUIET) ne "";
    print uc unpack("H*", $bytes), "\t", join(" ", map { sprintf "%04X", ord } split //, $text), "\n";
}
"""


def notation(text):
    return "+".join(f"U+{ord(character):04X}" for character in text)


def decoded(code, codec):
    try:
        return code.decode(codec)
    except UnicodeDecodeError:
        return None


def plane(prefix=b"", first=0xA1, last=0xFE):
    for row in range(first, last + 1):
        for cell in range(0xA1, 0xFF):
            yield prefix + bytes((row, cell))


def shift_jis_codes(first, last):
    for lead in range(first, last + 1):
        for trail in (*range(0x40, 0x7F), *range(0x80, 0xFD)):
            yield bytes((lead, trail))


def write(name, about, entries):
    """entries: (code as bytes, text, whether the code is only read)."""
    lines = [f"# {line}".rstrip() for line in about.strip().splitlines()]
    lines.append("# Each line: the code, a tab, its character or characters.")
    if any(read_only for _, _, read_only in entries):
        lines.append(f'# "{READ_ONLY}" marks a duplicate that is never written.')
    for code, text, read_only in entries:
        lines.append(f"{code.hex().upper()}\t{notation(text)}" + f"\t{READ_ONLY}" * read_only)
    (DATA / f"{name}.txt").write_text("\n".join(lines) + "\n", encoding="ascii")


def from_codec(codes, codec):
    entries = []
    for code in codes:
        text = decoded(code, codec)
        if text is not None:
            entries.append((code, text, text.encode(codec) != code))
    return entries


def mac_os_roman():
    write("mac_os_roman", "Mac OS Roman: Python's mac_roman codec.",
          from_codec((bytes((code,)) for code in range(256)), "mac_roman"))


def code_page_932():
    leads = (*range(0x81, 0xA0), *range(0xE0, 0xFD))
    singles = [bytes((code,)) for code in range(256) if code not in leads]
    doubles = [*shift_jis_codes(0x81, 0x9F), *shift_jis_codes(0xE0, 0xFC)]
    texts = {code: decoded(code, "cp932") for code in (*singles, *doubles)}
    # Windows reads the byte as a no-break space; Python has U+F8F0, in line with FD to FF.
    texts[b"\xa0"] = "\u00a0"
    nec_selected = (0xED, 0xEE)
    written = {}
    for code in sorted(texts, key=lambda code: (code[0] in nec_selected, code)):
        written.setdefault(texts[code], code)
    write("code_page_932", """
Code page 932: Python's cp932 codec, but for A0. Includes NEC row 13 (8740-879C), the NEC-selected
(ED40-EEFC) and IBM (FA40-FC4B) extensions, the user-defined rows (F040-F9FC) and Microsoft's
assignments for the single bytes 80, A0 and FD to FF. Duplicates are written as Microsoft does: in
JIS X 0208 first, then in NEC row 13, then in the IBM extensions.
""", [(code, text, written[text] != code) for code, text in texts.items() if text])
    return texts


def mac_japanese():
    output = subprocess.run(["perl", "-e", MAC_JAPANESE_DUMP], check=True, capture_output=True, text=True)
    entries = []
    for line in output.stdout.splitlines():
        code, points = line.split("\t")
        entries.append((bytes.fromhex(code), "".join(chr(int(point, 16)) for point in points.split()), False))
    entries.append((b"\x7f", "\x7f", False))
    for index, code in enumerate(shift_jis_codes(0xF0, 0xFC)):
        entries.append((code, chr(0xE000 + index), False))
    entries.sort(key=lambda entry: (len(entry[0]), entry[0]))
    write("mac_japanese", """
Macintosh Japanese. All but 7F and the rows F0 to FC is MacJapanese of Perl's Encode, made from the
vendor's published table, with its sequences: U+F860 to U+F862 say that the next two, three or four
characters are one; U+F87A, U+F87E and U+F87F make the character before them its inverse, vertical
or alternate form. The user-defined rows F040-FCFC are in order from U+E000, as that table's notes
say; the control character 7F is not listed there.
""", entries)


def jis_x_0208():
    write("jis_x_0208", """
JIS X 0208 as EUC-JP codes: Python's euc_jp codec. Without the high bits they are the JIS codes.
""", from_codec(plane(), "euc_jp"))


def jis_x_0212():
    entries = from_codec(plane(b"\x8f"), "euc_jp")
    write("jis_x_0212", """
JIS X 0212 as EUC-JP codes: Python's euc_jp codec. Without 8F and the high bits they are the JIS
codes. ASCII writes U+007E, NEC row 13 writes U+2116.
""", [(code, text, text in "~\u2116") for code, text, _ in entries])


def euc_from_shift_jis(code):
    lead, trail = code
    row = (lead - (0x81 if lead < 0xA0 else 0xC1)) * 2
    cell = trail - 0x40 - (trail > 0x7F)
    return bytes((0xA1 + row + cell // 94, 0xA1 + cell % 94))


def jis_extensions(code_page):
    """Vendor characters around JIS X 0208 and JIS X 0212, from their codes in code page 932."""
    standard = {text for code in plane() if (text := decoded(code, "euc_jp"))}
    supplement = {text for code in plane(b"\x8f") if (text := decoded(code, "euc_jp"))}
    entries, written = [], set(standard)

    def add(code, text, also_written=frozenset()):
        entries.append((code, text, text in written or text in also_written))
        written.add(text)

    # The JIS mapping has one character for the not sign, wherever it stands.
    texts = {code: "\u00ac" if text == "\uffe2" else text for code, text in code_page.items()}
    for code in shift_jis_codes(0x87, 0x87):
        if texts[code]:
            add(euc_from_shift_jis(code), texts[code])
    for code in shift_jis_codes(0xED, 0xEE):
        if texts[code]:
            add(euc_from_shift_jis(code), texts[code], supplement)
    for code in plane(b"\x8f", 0xF3, 0xF4):
        result = subprocess.run(["iconv", "-f", "EUC-JP-MS", "-t", "UTF-8"], input=code, capture_output=True)
        if result.returncode == 0:
            add(code, result.stdout.decode())
    write("jis_extensions", """
Vendor extensions of JIS X 0208 and JIS X 0212 as EUC-JP codes. NEC row 13 (ADxx) and the
NEC-selected IBM extensions (F9xx-FCxx) stand where Microsoft's EUC-JP and ISO-2022-JP have them,
from code_page_932.txt by arithmetic, but for the not sign, which is U+00AC as in JIS X 0208.
8FF3F3-8FF4FE is where Unix systems put those IBM extensions that JIS X 0212 lacks: the C library's
EUC-JP-MS. A character is written in the first of JIS X 0208, row 13, JIS X 0212, F9xx-FCxx that
has it.
""", entries)


def main():
    DATA.mkdir(exist_ok=True)
    mac_os_roman()
    mac_japanese()
    jis_x_0208()
    jis_x_0212()
    jis_extensions(code_page_932())


main()
