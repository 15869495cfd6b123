#!/usr/bin/python3
"""Turns the mapping tables in platform/text/data into the arrays of platform/text/text_tables.h.

    generate_text_tables.py DATA_FOLDER OUTPUT.cpp
"""

import re
import sys
from pathlib import Path

UNASSIGNED, FIRST_SEQUENCE = 0xD800, 0xD801


def read(path):
    """Every line's code (bytes), units, and whether the code is written too."""
    for line in path.read_text(encoding="ascii").splitlines():
        if not line.startswith("#"):
            code, points, *mark = line.split("\t")
            yield bytes.fromhex(code), [int(unit, 16) for unit in re.findall(r"[0-9A-F]+(?=\+|$)", points)], not mark


def array(kind, name, values):
    lines = [f"constexpr {kind} {name}[] = {{"]
    for start in range(0, len(values), 16):
        lines.append("    " + ", ".join(f"0x{value:04X}" for value in values[start:start + 16]) + ",")
    return "\n".join(lines) + "\n};\n"


def encode_table(name, cells):
    """cells: unit -> code. Prints the array; answers its name."""
    return array("uint16_t", f"{name}Encoded", [cells.get(unit, 0) for unit in range(0x10000)]), f"{name}Encoded"


def shift_jis(name, table, entries):
    # ShiftJISTable::rowOf, the same arithmetic
    rows = [min(((byte ^ 0x20) - 0xA1) & 0xFF, 60) for byte in range(256)]
    decoded, cells = [UNASSIGNED] * (61 * 256), {}
    sequences = sorted((entry for entry in entries if len(entry[1]) > 1), key=lambda entry: -len(entry[1]))
    for code, units, written in entries:
        value = units[0]
        if len(units) > 1:
            value = FIRST_SEQUENCE + [code for code, _, _ in sequences].index(code)
        elif written:
            cells[units[0]] = int.from_bytes(code, "big")
        decoded[rows[code[0]] << 8 | code[-1]] = value
    text, encode = encode_table(name, cells)
    text += array("char16_t", f"{name}Decoded", decoded)
    if sequences:
        text += f"constexpr Sequence {name}Sequences[] = {{\n"
        for code, units, _ in sequences:
            points = ", ".join(f"0x{unit:04X}" for unit in units)
            text += f"    {{0x{int.from_bytes(code, 'big'):04X}, {len(units)}, {{{points}}}}},\n"
        text += "};\n"
    fields = [f"{name}Decoded", encode, f"{name}Sequences" if sequences else "{}"]
    return text, f"constinit const ShiftJISTable {table} = {{{', '.join(fields)}}};\n"


def jis(entries):
    planes = [[UNASSIGNED] * (129 * 256), [UNASSIGNED] * (128 * 256)]
    planes[0][0x8000:0x8080] = range(0x80)
    cells = {}
    for offset in range(63):
        planes[0][0x0E << 8 | (0xA1 + offset)] = 0xFF61 + offset
        cells[0xFF61 + offset] = 0xA1 + offset
    for code, (unit,), written in entries:
        plane = len(code) - 2
        row, cell = code[-2:]
        planes[plane][(row - 0x80) << 8 | cell] = unit
        if written:
            assert unit not in cells, f"U+{unit:04X} is written in two ways"
            cells[unit] = row << 8 | (cell - 0x80 if plane else cell)
    text, encode = encode_table("kJIS", cells)
    text += array("char16_t", "kJISX0208", planes[0]) + array("char16_t", "kJISX0212", planes[1])
    return text, f"constinit const JISTable kJISTable = {{{{kJISX0208, kJISX0212}}, {encode}}};\n"


def mac_os_roman(entries):
    text, encode = encode_table("kMacOSRoman", {unit: code[0] for code, (unit,), _ in entries})
    text += array("char16_t", "kMacOSRomanSingles", [unit for _, (unit,), _ in sorted(entries)])
    return text, f"constinit const MacOSRomanTable kMacOSRomanTable = {{kMacOSRomanSingles, {encode}}};\n"


def main(data, output):
    def entries(*names):
        return [entry for name in names for entry in read(data / f"{name}.txt")]

    tables = [
        shift_jis("kMacJapanese", "kMacJapaneseTable", entries("mac_japanese")),
        shift_jis("kCodePage932", "kCodePage932Table", entries("code_page_932")),
        jis(entries("jis_x_0208", "jis_x_0212", "jis_extensions")),
        mac_os_roman(entries("mac_os_roman")),
    ]
    output.write_text("\n".join([
        "// Made by tools/generate_text_tables.py from platform/text/data; do not edit.",
        '#include "platform/text/text_tables.h"\n',
        "namespace zelmora::platform {\nnamespace {\n",
        *(arrays for arrays, _ in tables),
        "} // namespace\n",
        *(definition for _, definition in tables),
        "} // namespace zelmora::platform\n",
    ]), encoding="ascii")


main(Path(sys.argv[1]), Path(sys.argv[2]))
