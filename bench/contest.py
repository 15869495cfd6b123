"""Runs programs on the same work by turns and takes their times and their peak memory."""

import dataclasses
import os
import statistics
import subprocess
import tempfile
import time
from collections.abc import Callable


@dataclasses.dataclass
class Contender:
    command: list[str]
    prepare: Callable[[], None]  # makes what the command needs afresh; not timed
    verify: Callable[[], bool] | None = None  # whether the first run's result is right


def _start(command):
    null = [(os.POSIX_SPAWN_OPEN, fd, os.devnull, os.O_RDWR, 0) for fd in (0, 1, 2)]
    return os.posix_spawnp(command[0], command, os.environ, file_actions=null)


def _run(command):
    start = time.perf_counter()
    process = _start(command)
    _, status = os.waitpid(process, 0)
    seconds = time.perf_counter() - start
    if status != 0:
        raise SystemExit(f"failed: {' '.join(command)[:200]}")
    return seconds


def times(contenders, runs):
    """Median seconds by contender's name. They take turns, so that a busy spell of the machine
    falls on all of them."""
    seconds = {name: [] for name in contenders}
    for turn in range(runs):
        for name, each in contenders.items():
            each.prepare()
            seconds[name].append(_run(each.command))
            if turn == 0 and each.verify and not each.verify():
                raise SystemExit(f"wrong result: {' '.join(each.command)[:200]}")
    return {name: statistics.median(values) for name, values in seconds.items()}


def peak_memory(contender):
    """The most bytes resident at a time. Measured by a small program: a child of this large one
    would be charged with its parent's memory."""
    contender.prepare()
    with tempfile.NamedTemporaryFile("r") as report:
        subprocess.run(
            ["/usr/bin/time", "-f", "%M", "-o", report.name, *contender.command],
            check=True,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        return int(report.read()) * 1024
