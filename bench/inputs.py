"""Japanese texts and folders of them to convert, the same in every run."""

import random

MIB = 1 << 20
# Python's codec and, for iconv, the C library's name of each encoding.
CODECS = {
    "Shift_JIS": ("cp932", "CP932"),
    "EUC-JP": ("euc_jp", "EUC-JP"),
    "ISO-2022-JP": ("iso2022_jp", "ISO-2022-JP"),
    "UTF-8": ("utf-8", "UTF-8"),
    "UTF-16": ("utf-16-le", "UTF-16"),
}
FILES_PER_FOLDER = 100


def _novel(characters):
    """Prose like bench/novel.h's: CRLF lines of kanji, kana, marks and some ASCII."""
    random_source = random.Random(20230610)
    rows = (bytes([row, cell]) for row in range(0xB0, 0xD0) for cell in range(0xA1, 0xFF))
    kanji = [each.decode("euc_jp", "ignore") for each in rows]
    kanji = [each for each in kanji if each]
    kinds = [
        (52, [chr(0x3042 + n) for n in range(82)]),
        # A product of two even draws: few kanji are frequent, many rare.
        (32, [kanji[a * b] for a in range(54) for b in range(54)]),
        (8, [chr(0x30A2 + n) for n in range(82)]),
        (5, list("、。「」ー・…？")),
        (3, [chr(0x30 + n) for n in range(75)]),
    ]
    weights = [weight for weight, _ in kinds]
    lines, length = [], 0
    while length < characters:
        chosen = random_source.choices(kinds, weights, k=random_source.randint(18, 57))
        lines.append("\u3000" + "".join(random_source.choice(each) for _, each in chosen) + "。\r\n")
        length += len(lines[-1])
    return "".join(lines)


BLOCK = _novel(MIB // 2)


def encoded(text, encoding):
    """The text's bytes; UTF-16 is little-endian and begins with its mark."""
    mark = b"\xff\xfe" if encoding == "UTF-16" else b""
    return mark + text.encode(CODECS[encoding][0])


class LargeText:
    """A text of nearly `size` bytes in `encoding`: one block of prose again and again, written
    block by block, so that this process stays small."""

    def __init__(self, size, encoding):
        self.encoding = encoding
        block_size = len(encoded(BLOCK, encoding))
        self._count = max(1, size // block_size)
        self._block = BLOCK
        if size < block_size:
            self._block = BLOCK[: BLOCK.rindex("\n", 0, len(BLOCK) * size // block_size) + 1]

    def units(self):
        return len(self._block) * self._count

    def text(self):
        return self._block * self._count

    def write(self, path):
        block = self._block.encode(CODECS[self.encoding][0])
        with open(path, "wb") as file:
            file.write(encoded("", self.encoding))
            for _ in range(self._count):
                file.write(block)

    def _result_block(self, encoding):
        return self._block.replace("\r\n", "\n").encode(CODECS[encoding][0])

    def result_size(self, encoding):
        return len(self._result_block(encoding)) * self._count

    def is_result(self, path, encoding):
        """Whether the file holds the text in `encoding`, with LF."""
        block = self._result_block(encoding)
        with open(path, "rb") as file:
            return all(file.read(len(block)) == block for _ in range(self._count)) and (
                not file.read(1)
            )


class FileTree:
    """`count` files of about `size` bytes each in folders of a hundred, in three encodings."""

    def __init__(self, count, size):
        self.count = count
        self._contents = []
        for encoding in ("Shift_JIS", "EUC-JP", "ISO-2022-JP"):
            text = LargeText(size, encoding).text()
            self._contents.append((encoded(text, encoding), text))

    def _path(self, root, number):
        return root / f"{number // FILES_PER_FOLDER:05}" / f"{number:07}.txt"

    def paths(self, root):
        return [self._path(root, number) for number in range(self.count)]

    def path_size(self, root):
        """Bytes of one of its paths; they are all of one length."""
        return len(str(self._path(root, 0)))

    def write(self, root):
        for number, path in enumerate(self.paths(root)):
            if number % FILES_PER_FOLDER == 0:
                path.parent.mkdir(parents=True)
            path.write_bytes(self._contents[number % len(self._contents)][0])

    def is_result(self, root):
        """Whether every file is in UTF-8 with LF."""
        wanted = [text.replace("\r\n", "\n").encode() for _, text in self._contents]
        return all(
            path.read_bytes() == wanted[number % len(wanted)]
            for number, path in enumerate(self.paths(root))
        )
