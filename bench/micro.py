"""What the programs built on Google Benchmark say, as rows of the table."""

import json
import subprocess
import tempfile

from report import Row, speed_text

LARGE_MARKUP = 50_000_000  # units of the largest text in markup_bench
SMALL_MARKUP = 12_500_000


def _medians(program, filter_, quick):
    """What each benchmark of the program says, the median of its runs, by its name."""
    with tempfile.NamedTemporaryFile("r") as output:
        subprocess.run(
            [
                str(program),
                f"--benchmark_filter={filter_}",
                f"--benchmark_min_time={0.02 if quick else 0.1}",
                f"--benchmark_repetitions={3 if quick else 5}",
                "--benchmark_report_aggregates_only=true",
                f"--benchmark_out={output.name}",
            ],
            check=True,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        entries = json.load(output)["benchmarks"]
    wrong = [each["run_name"] for each in entries if each.get("error_occurred")]
    if wrong:
        raise SystemExit(f"failed: {program.name}: {', '.join(wrong)}")
    return {each["run_name"]: each for each in entries if each["aggregate_name"] == "median"}


def _speed_row(group, work, entry, goal=None):
    """A speed; `goal` in GB/s."""
    return Row.speed(group, work, entry["bytes_per_second"], goal)


def codec_rows(programs, quick):
    medians = _medians(programs / "codecs_bench", "", quick)
    group = "codecs alone"
    for label in ("ShiftJIS", "EUCJP", "ISO2022JP", "UTF8"):
        for verb in ("decode", "encode"):
            ours, iconv = (
                medians[f"{name}/{label}"]["bytes_per_second"]
                for name in (verb, f"iconv{verb.capitalize()}")
            )
            work = f"{verb} {label}"
            if label == "UTF8":
                yield Row.speed(group, work, ours, 2, f"iconv {speed_text(iconv)}")
            else:
                yield Row.fast(group, work, "iconv", ours, iconv, 8)


def text_rows(programs, quick, guessing_speed):
    """`guessing_speed`: bytes of Shift_JIS that nkf guesses from in a second."""
    medians = _medians(programs / "textutil_bench", "", quick)
    group = "detection alone"
    for label in ("ShiftJIS", "EUCJP", "UTF8"):
        yield _speed_row(group, f"Japanese, {label}", medians[f"detectEncoded/{label}"], 3)
    speed = medians["detectEncoded/ShiftJIS"]["bytes_per_second"]
    yield Row.fast(group, "64 MB Shift_JIS", "nkf -g", speed, guessing_speed, 50)
    for label in ("ASCII", "Latin1", "TwoByteUTF8", "Escapes"):
        yield _speed_row(group, label, medians[f"detectBytes/{label}"])
    group = "text steps alone"
    yield _speed_row(group, "line breaks, none to change", medians["keepLineBreaks"], 3)
    for label in ("LFToCR", "LFToCRLF", "CRLFToLF"):
        yield _speed_row(
            group, f"line breaks, {label}", medians[f"convertLineBreaks/{label}"], 0.5
        )
    yield _speed_row(group, "katakana, none to change", medians["katakanaNone"], 3)
    yield _speed_row(group, "katakana in every line", medians["katakanaMixed"], 0.5)


def markup_rows(programs, quick):
    sizes = [SMALL_MARKUP] if quick else [SMALL_MARKUP, LARGE_MARKUP]
    medians = _medians(programs / "markup_bench", f"/({'|'.join(map(str, sizes))})$", quick)
    for name in (key.rsplit("/", 1)[0] for key in medians if key.endswith(f"/{SMALL_MARKUP}")):
        small, large = (medians[f"{name}/{size}"] for size in (sizes[0], sizes[-1]))
        yield _speed_row("markup, per unit", name, large)
        if not quick:
            yield Row.growth(
                "markup, per unit", f"{name}, 12.5 to 50 million",
                small["cpu_time"] / SMALL_MARKUP, large["cpu_time"] / LARGE_MARKUP, None,
            )


def foundation_rows(programs, quick):
    medians = _medians(programs / "foundation_bench", "", quick)
    for name, entry in medians.items():
        if "bytes_per_second" in entry:
            yield _speed_row("foundation, per character", name, entry)
        else:
            yield Row.cost("foundation", f"{name}, each", 1 / entry["items_per_second"])
