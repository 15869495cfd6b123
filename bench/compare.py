#!/usr/bin/env python3
"""Compares zelmora-convert with nkf, iconv, uconv, sed and cp, and its parts with their goals.

Prints one table and writes the same as JSON. A ratio is the peer's time over ours, so more is
better, but where the goal is an upper bound: there it is ours over the peer's, or what a piece of
the large work costs over one of the small.
"""

import argparse
import dataclasses
import datetime
import json
import os
import pathlib
import platform
import shutil
import subprocess
import sys
import tempfile
import time

import micro
from contest import Contender, peak_memory, times
from inputs import CODECS, MIB, FileTree, LargeText
from report import Row, table

SMALL_FILE = 8_000  # bytes
TINY_FILE = 1_000
MEMORY_MARGIN = 16 * MIB
PATH_MARGIN = 300  # bytes that a queued path may take beyond itself


class Sizes:
    """How much work there is: a full run, or a quick one that only tells whether all is well."""

    def __init__(self, quick, gigabyte):
        self.runs = 3 if quick else 5
        self.runs_of_many = 3  # of trees that take longer to write than to convert
        self.large = (8 if quick else 64) * MIB
        self.small_files = 300 if quick else 3_000
        self.grown = (16 if quick else 1024 if gigabyte else 256) * MIB
        self.grown_files = (200, 2_000) if quick else (1_000, 100_000)
        self.queued_files = (500, 5_000) if quick else (2_000, 200_000)


class Comparison:
    """The comparisons in one folder of one file system. Everything is made under it."""

    def __init__(self, programs, sizes, folder, where):
        self._convert = str(programs / "zelmora-convert")
        self._no_folder_sync = f"LD_PRELOAD={programs / 'libno_folder_sync.so'}"
        self._sizes = sizes
        self._folder = folder
        self._where = where
        self._source = folder / "source.txt"
        self._work = folder / "work.txt"
        self._out = folder / "out.txt"
        self._tree = folder / "tree"
        self._tree_work = folder / "work"
        self._tree_out = folder / "out"

    def _ours(self, encoding, path):
        return [
            self._convert, "--quiet", "--no-backup", "--line-break", "lf", "--encoding", encoding,
            str(path),
        ]

    def _copy_source(self):
        shutil.copyfile(self._source, self._work)
        # The copy must not be written out on the contender's time.
        with open(self._work, "rb") as file:
            os.fsync(file)

    def _remove_output(self):
        self._out.unlink(missing_ok=True)
        shutil.rmtree(self._tree_out, ignore_errors=True)

    def _converting(self, text, target):
        """Ours on a fresh copy of the source."""
        return Contender(
            self._ours(target, self._work), self._copy_source,
            lambda: text.is_result(self._work, target),
        )

    def _iconv(self, source, target):
        command = ["iconv", "-f", CODECS[source][1], "-t", CODECS[target][1], "-o", str(self._out)]
        return Contender([*command, str(self._source)], self._remove_output)

    def _cp(self, *paths):
        return Contender(["cp", "-r", *map(str, paths)], self._remove_output)

    def large_file(self, with_memory):
        """Shift_JIS to UTF-8 with LF, against everyone."""
        text = LargeText(self._sizes.large, "Shift_JIS")
        text.write(self._source)
        nkf = ["nkf", "-w", "-Lu", "--overwrite", str(self._work)]
        uconv = ["uconv", "-f", "cp932", "-t", "utf-8", "-o", str(self._out), str(self._source)]
        contenders = {
            "ours": self._converting(text, "UTF-8"),
            "nkf": Contender(nkf, self._copy_source),
            "iconv": self._iconv("Shift_JIS", "UTF-8"),
            "uconv": Contender(uconv, self._remove_output),
            "cp": self._cp(self._source, self._out),
        }
        median = times(contenders, self._sizes.runs)
        group = f"{self._sizes.large // MIB} MB file, {self._where}"
        work = "Shift_JIS to UTF-8"
        goals = {"nkf": 25, "iconv": 4, "uconv": 3} if self._where == "RAM" else {}
        for peer in ("nkf", "iconv", "uconv"):
            yield Row.faster(group, work, peer, median["ours"], median[peer], goals.get(peer))
        yield Row.slower(
            group, work, "cp", median["ours"], median["cp"], 6 if self._where == "RAM" else None
        )
        if with_memory:
            yield from self._memory(group, text, contenders)

    def _memory(self, group, text, contenders):
        peaks = {name: peak_memory(each) for name, each in contenders.items()}
        output = text.result_size("UTF-8")
        limit = self._source.stat().st_size + 2 * text.units() + output + MEMORY_MARGIN
        yield Row.memory(group, "peak memory", peaks["ours"], limit)
        for peer in ("nkf", "iconv", "uconv", "cp"):
            yield Row.memory(group, f"peak memory of {peer}", peaks[peer])

    def other_encodings(self):
        """The other ways against iconv."""
        group = f"{self._sizes.large // MIB} MB file, {self._where}"
        ways = [("EUC-JP", "UTF-8"), ("ISO-2022-JP", "UTF-8"), ("UTF-8", "Shift_JIS")]
        for source, target in [*ways, ("UTF-16", "UTF-8")]:
            text = LargeText(self._sizes.large, source)
            text.write(self._source)
            contenders = {
                "ours": self._converting(text, target),
                "iconv": self._iconv(source, target),
            }
            median = times(contenders, self._sizes.runs)
            work = f"{source} to {target}"
            yield Row.faster(group, work, "iconv", median["ours"], median["iconv"], 4)

    def guessing(self):
        """Detection by command, as a row, and the bytes per second that nkf guesses from."""
        LargeText(self._sizes.large, "Shift_JIS").write(self._source)
        contenders = {
            "ours": Contender([self._convert, "--detect", str(self._source)], lambda: None),
            "nkf": Contender(["nkf", "-g", str(self._source)], lambda: None),
        }
        median = times(contenders, self._sizes.runs)
        group = f"{self._sizes.large // MIB} MB file, {self._where}"
        row = Row.faster(group, "--detect", "nkf -g", median["ours"], median["nkf"])
        return row, self._source.stat().st_size / median["nkf"]

    def small_files(self):
        count = self._sizes.small_files
        tree = FileTree(count, SMALL_FILE)
        tree.write(self._tree)
        paths = [str(path) for path in tree.paths(self._tree_work)]

        used = self._folder / "used"
        used.mkdir()

        def copy_tree():
            if self._where == "disk" and self._tree_work.exists():
                # ext4 passes over files deleted lately, one by one, when it looks for room for a
                # new one. What a run has left is deleted when all are done.
                self._tree_work.rename(used / str(len(os.listdir(used))))
            shutil.rmtree(self._tree_work, ignore_errors=True)
            subprocess.run(["cp", "-r", self._tree, self._tree_work], check=True)
            if self._where == "disk":
                os.sync()

        contenders = {
            "ours": Contender(
                self._ours("UTF-8", self._tree_work), copy_tree,
                lambda: tree.is_result(self._tree_work),
            ),
            "nkf": Contender(["nkf", "-w", "-Lu", "--overwrite", *paths], copy_tree),
            "sed -i": Contender(["sed", "-i", r"s/\r$//", *paths], copy_tree),
            "cp": self._cp(self._tree, self._tree_out),
        }
        if self._where == "disk":
            ours = ["env", self._no_folder_sync, *self._ours("UTF-8", self._tree_work)]
            contenders["names not synced"] = Contender(ours, copy_tree)
        median = times(contenders, self._sizes.runs)
        group = f"{count} files of 8 kB, {self._where}"
        goals = {"nkf": 8, "sed -i": 1} if self._where == "RAM" else {"nkf": 1.5}
        for peer in ("nkf", "sed -i"):
            yield Row.faster(group, "to UTF-8", peer, median["ours"], median[peer], goals.get(peer))
        yield Row.slower(group, "to UTF-8", "cp -r", median["ours"], median["cp"])
        if self._where == "disk":
            peer = "names not synced"
            yield Row.slower(
                group, "to UTF-8, safe from power cuts", peer, median["ours"], median[peer]
            )
        shutil.rmtree(self._tree_work)
        shutil.rmtree(used)

    def tiny_file(self):
        text = LargeText(TINY_FILE, "Shift_JIS")
        text.write(self._source)
        contenders = {
            "ours": self._converting(text, "UTF-8"),
            "iconv": self._iconv("Shift_JIS", "UTF-8"),
        }
        median = times(contenders, 8 * self._sizes.runs)
        group = f"start-up, {self._where}"
        goal = 2 if self._where == "RAM" else None
        yield Row.slower(group, "one file of 1 kB", "iconv", median["ours"], median["iconv"], goal)

    def growth_with_size(self):
        small, large = (LargeText(size, "Shift_JIS") for size in (MIB, self._sizes.grown))
        small_source, small_work = self._folder / "small.txt", self._folder / "small-work.txt"
        small.write(small_source)
        large.write(self._source)
        contenders = {
            "small": Contender(
                self._ours("UTF-8", small_work), lambda: shutil.copyfile(small_source, small_work)
            ),
            "large": self._converting(large, "UTF-8"),
        }
        median = times(contenders, self._sizes.runs)
        work = f"a byte, file of 1 MB to {self._sizes.grown // MIB} MB"
        yield Row.growth(
            "growth", work, median["small"] / small_source.stat().st_size,
            median["large"] / self._source.stat().st_size, 1.15,
        )
        self._source.unlink()
        self._work.unlink()

    def _tree_contender(self, name, count):
        root = self._folder / name
        tree = FileTree(count, TINY_FILE)

        def write():
            shutil.rmtree(root, ignore_errors=True)
            tree.write(root)

        return Contender(self._ours("UTF-8", root), write, lambda: tree.is_result(root))

    def growth_with_count(self):
        yield from self._growth_with_count(self._sizes.grown_files, 1.15)
        small, large = self._sizes.queued_files
        yield from self._growth_with_count((small, large), 1.2)
        peaks = [peak_memory(self._tree_contender("work", count)) for count in (small, large)]
        per_path = (peaks[1] - peaks[0]) / (large - small)
        path_size = FileTree(large, TINY_FILE).path_size(self._folder / "work")
        yield Row.memory(
            "growth", f"memory of a queued path, {large} files", per_path,
            path_size + PATH_MARGIN, f"path {path_size} B",
        )
        shutil.rmtree(self._folder / "work")

    def _growth_with_count(self, counts, goal):
        small, large = counts
        contenders = {count: self._tree_contender(f"tree-{count}", count) for count in counts}
        median = times(contenders, self._sizes.runs_of_many)
        for count in counts:
            shutil.rmtree(self._folder / f"tree-{count}")
        work = f"a file of 1 kB, {small} to {large} files"
        yield Row.growth("growth", work, median[small] / small, median[large] / large, goal)


@dataclasses.dataclass
class Run:
    ram: Comparison
    disk: Comparison
    programs: pathlib.Path
    quick: bool


def large_rows(run):
    yield from run.ram.large_file(with_memory=True)
    yield from run.ram.other_encodings()
    yield from run.disk.large_file(with_memory=False)


def small_rows(run):
    for each in (run.ram, run.disk):
        yield from each.small_files()
        yield from each.tiny_file()


def growth_rows(run):
    yield from run.ram.growth_with_size()
    yield from run.ram.growth_with_count()


def text_rows(run):
    guess, guessing_speed = run.ram.guessing()
    yield guess
    yield from micro.text_rows(run.programs, run.quick, guessing_speed)


PARTS = {
    "large": large_rows,
    "small": small_rows,
    "growth": growth_rows,
    "codecs": lambda run: micro.codec_rows(run.programs, run.quick),
    "text": text_rows,
    "markup": lambda run: micro.markup_rows(run.programs, run.quick),
    "foundation": lambda run: micro.foundation_rows(run.programs, run.quick),
}


def progress(rows):
    """Passes the rows on and says on stderr what they are about."""
    start = time.monotonic()
    group = None
    for row in rows:
        if row.group != group:
            group = row.group
            print(f"bench: {time.monotonic() - start:4.0f} s: {group}", file=sys.stderr)
        yield row


def machine():
    with open("/proc/cpuinfo", encoding="ascii") as file:
        names = [line.split(":")[1].strip() for line in file if line.startswith("model name")]
    return {
        "processor": names[0] if names else platform.machine(),
        "processors": os.cpu_count(),
        "date": datetime.datetime.now().isoformat(timespec="seconds"),
    }


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build", type=pathlib.Path, help="the build folder, on the disk to measure")
    parser.add_argument("--quick", action="store_true", help="small sizes, fewer runs")
    parser.add_argument("--gigabyte", action="store_true", help="growth up to 1 GB, not 256 MB")
    parser.add_argument(
        "--part", action="append", choices=PARTS, help="only this part; may be given again"
    )
    options = parser.parse_args()
    programs = options.build.resolve() / "bin"
    sizes = Sizes(options.quick, options.gigabyte)
    load = [os.getloadavg()[0]]
    # The user's settings stay out of it, and everybody works in the same locale.
    os.environ["LC_ALL"] = "C"
    with (
        tempfile.TemporaryDirectory(prefix="zelmora-bench.", dir="/dev/shm") as ram_folder,
        tempfile.TemporaryDirectory(prefix="bench.", dir=options.build.resolve()) as disk_folder,
    ):
        os.environ["XDG_CONFIG_HOME"] = ram_folder
        ram = Comparison(programs, sizes, pathlib.Path(ram_folder), "RAM")
        disk = Comparison(programs, sizes, pathlib.Path(disk_folder), "disk")
        run = Run(ram, disk, programs, options.quick)
        parts = options.part or PARTS
        rows = list(progress(row for part in parts for row in PARTS[part](run)))
    load.append(os.getloadavg()[0])
    result = options.build / "bench.json"
    report = machine() | {"quick": options.quick, "parts": [*parts], "load": load}
    report["rows"] = [row.as_json() for row in rows]
    result.write_text(json.dumps(report, indent=1) + "\n", encoding="utf-8")
    print(table(rows))
    print(f"medians of {sizes.runs} runs or more, of {sizes.runs_of_many} for many files")
    print(f"load average {load[0]:.1f} before, {load[1]:.1f} after, {report['processors']} processors")
    print(f"JSON: {result}")


if __name__ == "__main__":
    main()
