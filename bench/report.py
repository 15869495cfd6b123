"""The rows of the report and the table that they make."""

import dataclasses

MIB = 1 << 20


def time_text(seconds):
    for unit, factor in (("s", 1), ("ms", 1e3), ("us", 1e6)):
        if seconds * factor >= 1:
            return f"{seconds * factor:.3g} {unit}"
    return f"{seconds * 1e9:.3g} ns"


def speed_text(bytes_per_second):
    if bytes_per_second >= 1e9:
        return f"{bytes_per_second / 1e9:.2f} GB/s"
    return f"{bytes_per_second / 1e6:.0f} MB/s"


def memory_text(size):
    return f"{size / MIB:.1f} MB" if size >= MIB else f"{size:.0f} B"


@dataclasses.dataclass
class Row:
    """One comparison. The figure is what the goal speaks of, and a lower bound for it or an upper
    one; without a goal the row only tells."""

    group: str
    work: str
    ours: str
    peer: str = ""
    figure: float | None = None
    at_least: float | None = None
    at_most: float | None = None
    unit: str = "x"

    @classmethod
    def faster(cls, group, work, peer_name, ours, peer, goal=None):
        """How many times our seconds go into the peer's; `goal` at least."""
        return cls(
            group, work, time_text(ours), f"{peer_name} {time_text(peer)}", peer / ours, goal
        )

    @classmethod
    def fast(cls, group, work, peer_name, ours, peer, goal=None):
        """How many times the peer's speed goes into ours; `goal` at least."""
        row = cls.faster(group, work, peer_name, 1 / ours, 1 / peer, goal)
        texts = {"ours": speed_text(ours), "peer": f"{peer_name} {speed_text(peer)}"}
        return dataclasses.replace(row, **texts)

    @classmethod
    def slower(cls, group, work, peer_name, ours, peer, goal=None):
        """How many times the peer's seconds go into ours; `goal` at most."""
        row = cls.faster(group, work, peer_name, ours, peer)
        return dataclasses.replace(row, figure=ours / peer, at_most=goal)

    @classmethod
    def growth(cls, group, work, small, large, goal):
        """How much more a piece of the large work costs than one of the small; `goal` at most."""
        return cls(
            group, work, time_text(large), f"small {time_text(small)}", large / small,
            at_most=goal,
        )

    @classmethod
    def speed(cls, group, work, bytes_per_second, goal=None, peer=""):
        """`goal` in GB/s, at least."""
        return cls(
            group, work, speed_text(bytes_per_second), peer, bytes_per_second / 1e9, goal,
            unit="GB/s",
        )

    @classmethod
    def memory(cls, group, work, size, goal=None, peer=""):
        """`goal` in bytes, at most."""
        return cls(group, work, memory_text(size), peer, size, at_most=goal, unit="bytes")

    @classmethod
    def cost(cls, group, work, seconds):
        return cls(group, work, time_text(seconds))

    def met(self):
        """True, False, or None without a goal."""
        if self.at_least is not None:
            return self.figure >= self.at_least
        if self.at_most is not None:
            return self.figure <= self.at_most
        return None

    def goal_text(self):
        if self.met() is None:
            return ""
        sign, bound = (">=", self.at_least) if self.at_most is None else ("<=", self.at_most)
        if self.unit == "bytes":
            return f"{sign} {memory_text(bound)}"
        return f"{sign} {bound:g}{'x' if self.unit == 'x' else ' ' + self.unit}"

    def cells(self):
        ratio = f"{self.figure:.2f}x" if self.figure is not None and self.unit == "x" else ""
        verdict = {True: "yes", False: "NO", None: ""}[self.met()]
        return [self.work, self.ours, self.peer, ratio, self.goal_text(), verdict]

    def as_json(self):
        return dataclasses.asdict(self) | {"met": self.met()}


def table(rows):
    head = ["work", "ours", "peer", "ratio", "goal", "met"]
    cells = [row.cells() for row in rows]
    widths = [max(len(line[column]) for line in [head, *cells]) for column in range(len(head))]

    def line(words):
        return "  ".join(word.ljust(width) for word, width in zip(words, widths)).rstrip()

    lines = [line(head)]
    group = None
    for row in rows:
        if row.group != group:
            group = row.group
            lines += ["", f"-- {group}"]
        lines.append(line(row.cells()))
    goals = [row for row in rows if row.met() is not None]
    reached = sum(row.met() for row in goals)
    return "\n".join([*lines, "", f"{reached} of {len(goals)} goals reached"])
