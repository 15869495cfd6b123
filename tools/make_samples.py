#!/usr/bin/env python3
"""Writes the bundled samples: one short text per encoding, byte order, mark and line break.

The texts stand here, in UTF-8 and with LF; everything under samples/ is made from them. Python's
own codecs do the encoding, so the samples are independent of the program that converts them.
"""

import pathlib
import sys

LETTER = """拝啓

吾が家の庭に、今年も梅が咲きました。
カタカナとひらがな、漢字、①や㍉のような記号もあります。
「表示」と「能力」は、二番目のバイトが逆斜線になる字です。

敬具
"""

NOTES = """買い物メモ
・牛乳 2本
・卵 10個
・ﾊﾟﾝとﾊﾞﾀｰ(半角のまま)
"""

POEM = """雨ニモマケヌ丈夫ナ傘ヲ持チ
東ノ駅マデ歩イテユク
西ノ空ガ赤ク染マルマデ
"""

HTML = """<!DOCTYPE html>
<html lang="ja">
<head>
<meta http-equiv="Content-Type" content="text/html; charset={charset}">
<title>町の図書館</title>
</head>
<body>
<h1>開館時間のお知らせ</h1>
<p>平日は朝九時から夕方六時まで開いています。</p>
</body>
</html>
"""

XML = """<?xml version="1.0" encoding="{charset}"?>
<住所録>
  <人 id="1"><名前>山田花子</名前><町>横浜</町></人>
  <人 id="2"><名前>鈴木一郎</名前><町>名古屋</町></人>
</住所録>
"""

CSS = """@charset "{charset}";
/* 見出しは明朝体で */
h1 {{ font-family: "ＭＳ 明朝", serif; }}
p  {{ line-height: 1.8; }}
"""

BREAKS = {"lf": "\n", "cr": "\r", "crlf": "\r\n", "ls": "\u2028"}

# path, text, charset name, Python codec, mark, line break
SAMPLES = [
    ("letters/shift_jis-crlf.txt", LETTER, "Shift_JIS", "cp932", b"", "crlf"),
    ("letters/shift_jis-cr.txt", NOTES, "Shift_JIS", "cp932", b"", "cr"),
    ("letters/iso-2022-jp-lf.txt", POEM, "ISO-2022-JP", "iso2022_jp", b"", "lf"),
    ("letters/euc-jp-lf.txt", POEM, "EUC-JP", "euc_jp", b"", "lf"),
    ("letters/utf-8-lf.txt", LETTER, "UTF-8", "utf-8", b"", "lf"),
    ("letters/utf-8-mark-crlf.txt", NOTES, "UTF-8", "utf-8", b"\xef\xbb\xbf", "crlf"),
    ("letters/utf-16le-mark-crlf.txt", LETTER, "UTF-16", "utf-16-le", b"\xff\xfe", "crlf"),
    ("letters/utf-16be-mark-lf.txt", LETTER, "UTF-16", "utf-16-be", b"\xfe\xff", "lf"),
    ("letters/utf-16be-cr.txt", POEM, "UTF-16BE", "utf-16-be", b"", "cr"),
    ("letters/utf-16le-ls.txt", NOTES, "UTF-16LE", "utf-16-le", b"", "ls"),
    ("letters/utf-32le-mark-lf.txt", LETTER, "UTF-32", "utf-32-le", b"\xff\xfe\0\0", "lf"),
    ("letters/utf-32be-mark-cr.txt", NOTES, "UTF-32", "utf-32-be", b"\0\0\xfe\xff", "cr"),
    ("letters/utf-32be-crlf.txt", POEM, "UTF-32BE", "utf-32-be", b"", "crlf"),
    ("letters/ascii-crlf.txt", "Shopping list\n- milk\n- eggs\n", "", "ascii", b"", "crlf"),
    ("site/index.html", HTML, "Shift_JIS", "cp932", b"", "crlf"),
    ("site/news/euc-jp.html", HTML, "EUC-JP", "euc_jp", b"", "lf"),
    ("site/style/shift_jis.css", CSS, "Shift_JIS", "cp932", b"", "crlf"),
    ("site/data/addresses.xml", XML, "EUC-JP", "euc_jp", b"", "lf"),
    ("site/data/mail.xml", XML, "ISO-2022-JP", "iso2022_jp", b"", "lf"),
]


def main():
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else (
        pathlib.Path(__file__).resolve().parent.parent / "samples")
    for path, text, charset, codec, mark, line_break in SAMPLES:
        target = folder / path
        target.parent.mkdir(parents=True, exist_ok=True)
        body = text.format(charset=charset) if "{charset}" in text else text
        target.write_bytes(mark + body.replace("\n", BREAKS[line_break]).encode(codec))


main()
