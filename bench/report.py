"""Turns the benchmarks' data into docs/benchmarks.md and its plot, and says what falls short.

usage: report.py [--pages FOLDER] PLATFORM=FILE...

The data are lines of tab-separated values; harness.cpp says which. Without --pages nothing is
written. Remarks on rows that fall short stand in remarks.tsv beside this file.
"""

import argparse
import collections
import pathlib
import platform as machine
import subprocess

HERE = pathlib.Path(__file__).parent


class Operation:
    def __init__(self, platform, section, name):
        self.platform, self.section, self.name = platform, section, name
        self.times = {}  # variant -> (role, median)
        self.ratios = {}  # (subject, against) -> median
        self.bars = []  # (subject, against, at most)

    def variants(self, role):
        return {name: time for name, (r, time) in self.times.items() if r == role}

    def time(self):
        return self.times["util"][1]

    def limit(self):
        return next(iter(self.variants("limit")), None)

    def strongest_peer(self):
        peers = self.variants("peer")
        return min(peers, key=peers.get) if peers else None

    def ratio(self, against):
        return self.ratios.get(("util", against))

    def verdicts(self):
        for subject, against, at_most in self.bars:
            ratio = self.ratios[subject, against]
            yield subject, against, at_most, ratio, ratio <= at_most


def read(platform, path):
    """The operations of one data file in their order, and its rows about memory."""
    operations, memory = {}, []
    for line in pathlib.Path(path).read_text(encoding="utf-8").splitlines():
        kind, *fields = line.split("\t")
        if kind == "memory":
            memory.append(fields)
            continue
        section, name, *rest = fields
        operation = operations.setdefault((section, name), Operation(platform, section, name))
        if kind == "time":
            role, variant, _, median, _ = rest
            operation.times[variant] = role, float(median)
        elif kind == "ratio":
            subject, against, _, median, _ = rest
            operation.ratios[subject, against] = float(median)
        elif kind == "bar":
            subject, against, at_most = rest
            operation.bars.append((subject, against, float(at_most)))
    return list(operations.values()), memory


def figure(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def times(ratio):
    return f"{ratio:.2f}" if ratio >= 0.1 else f"{ratio:.2g}"


def bar_text(verdict):
    subject, against, at_most, ratio, met = verdict
    who = "" if subject == "util" else subject + " "
    text = f"{who}{times(ratio)} of {times(at_most)} × {against}"
    return text if met else f"**{text}**"


def table(operations):
    yield "| Operation | util | × limit | limit | × peer | strongest peer | bars | met |"
    yield "|---|--:|--:|---|--:|---|---|---|"
    for operation in operations:
        limit, peer = operation.limit(), operation.strongest_peer()
        verdicts = list(operation.verdicts())
        yield "| " + " | ".join([
            operation.name,
            figure(operation.time()),
            times(operation.ratio(limit)) if limit else "",
            f"{limit}, {figure(operation.times[limit][1])}" if limit else "",
            times(operation.ratio(peer)) if peer else "",
            f"{peer}, {figure(operation.times[peer][1])}" if peer else "",
            "; ".join(map(bar_text, verdicts)),
            "" if not verdicts else "yes" if all(v[4] for v in verdicts) else "**no**",
        ]) + " |"


def by_section(operations):
    sections = collections.defaultdict(list)
    for operation in operations:
        sections[operation.section].append(operation)
    return sections


def remarks():
    path = HERE / "remarks.tsv"
    lines = path.read_text(encoding="utf-8").splitlines() if path.exists() else []
    return {tuple(line.split("\t")[:2]): line.split("\t")[2] for line in lines}


def reason(operation, verdict, why):
    limit = operation.limit()
    doubled_limit = operation.ratios.get((f"{limit}, twice the size", limit))
    subject, _, at_most, *_ = verdict
    if subject == "util, twice the size" and doubled_limit and doubled_limit > at_most:
        return f"the limit, {limit}, takes {times(doubled_limit)} for twice the size"
    for platform in (operation.platform, "both"):
        if (platform, operation.name) in why:
            return why[platform, operation.name]
    return "no remark"


def shortfalls(operations):
    """One line for each bar that is not met, with the reason."""
    why = remarks()
    for operation in operations:
        for verdict in operation.verdicts():
            if not verdict[4]:
                yield (f"{operation.platform}, {operation.name}: {bar_text(verdict)} "
                       f"({reason(operation, verdict, why)})")


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return machine.machine()


def first_line(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout.splitlines()[0]


def page(platforms, memory):
    operations = [operation for rows in platforms.values() for operation in rows]
    bars = [verdict for operation in operations for verdict in operation.verdicts()]
    short = list(shortfalls(operations))
    yield "# Benchmarks"
    yield ""
    yield "Written by `./dev bench`; not edited by hand. The library, its peers and the limit (the least that any"
    yield "implementation must do) run in one process in rotating order; a ratio is the median of the"
    yield "rounds' quotients ([bench/harness.h](../bench/harness.h) explains it). Times move with the machine,"
    yield "ratios hardly. A ratio below 1 means that util takes less time. A bar is the ratio that the"
    yield "library sets itself; \"0.50 of 0.60 × P\" reads: takes 0.50 of the time of P, may take 0.60."
    yield ""
    yield "The native half runs without the C library's copies by one instruction of the processor, whose"
    yield "speed depends on where blocks happen to lie (GLIBC_TUNABLES in `dev`)."
    yield ""
    yield f"Measured on: {processor()}; {first_line('g++', '--version')}; {first_line('wine', '--version')}."
    yield f"{len(operations)} operations, {len(bars)} bars, {len(bars) - len(short)} met."
    yield ""
    yield "![Ratios of all operations to their limit and to the strongest peer](benchmarks.svg)"
    yield ""
    yield "## What falls short"
    yield ""
    yield from (f"- {line}" for line in short)
    if not short:
        yield "Nothing."
    for platform, rows in platforms.items():
        for section, group in by_section(rows).items():
            yield ""
            yield f"## {section.split(' ', 1)[1]}, {platform}"
            yield ""
            yield from table(group)
    if memory:
        yield ""
        yield "## Memory of long runs, under Wine"
        yield ""
        yield "| Pattern | process memory at the start | after a tenth | at the end | peak | heap blocks, tenth to end |"
        yield "|---|--:|--:|--:|--:|--:|"
        yield from ("| " + " | ".join(row) + " |" for row in memory)


def plot(platforms, path):
    import matplotlib
    matplotlib.use("svg")
    matplotlib.rcParams["svg.hashsalt"] = "util"  # the same file for the same data
    from matplotlib import pyplot
    rows = max(len(operations) + len(by_section(operations)) for operations in platforms.values())
    drawing, panels = pyplot.subplots(1, len(platforms), figsize=(8 * len(platforms), 1.5 + 0.21 * rows),
                                      squeeze=False, layout="constrained")
    for panel, (platform, operations) in zip(panels[0], platforms.items()):
        labels, y = [], 0
        for section, group in by_section(operations).items():
            labels.append((y, section.split(" ", 1)[1], True))
            y -= 1
            for operation in group:
                labels.append((y, operation.name, False))
                points = [(operation.ratio(operation.limit()), "o", "tab:gray", "to the limit")
                          if operation.limit() else None,
                          (operation.ratio(operation.strongest_peer()), "D", "tab:blue", "to the strongest peer")
                          if operation.strongest_peer() else None]
                for point in filter(None, points):
                    panel.plot(point[0], y, marker=point[1], color=point[2], markersize=4.5,
                               linestyle="none", label=point[3])
                y -= 1
        panel.axvline(1, color="black", linewidth=0.8)
        panel.set_xscale("log")
        panel.set_title(f"{platform}: time of util as a multiple; left of 1 is faster", fontsize=10)
        panel.set_yticks([label[0] for label in labels], [label[1] for label in labels], fontsize=7)
        for tick, label in zip(panel.get_yticklabels(), labels):
            tick.set_fontweight("bold" if label[2] else "normal")
        panel.set_ylim(y, 1)
        panel.grid(True, which="major", axis="both", linewidth=0.3)
        handles = dict(zip(*reversed(panel.get_legend_handles_labels())))
        panel.legend(handles.values(), handles.keys(), loc="lower right", fontsize=8)
    drawing.savefig(path, metadata={"Date": None})


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--pages", type=pathlib.Path)
    parser.add_argument("data", nargs="+")
    arguments = parser.parse_args()
    platforms, memory = {}, []
    for argument in arguments.data:
        platform, path = argument.split("=", 1)
        operations, rows = read(platform, path)
        platforms.setdefault(platform, []).extend(operations)
        memory += rows
    everything = [operation for operations in platforms.values() for operation in operations]
    if arguments.pages:
        text = "\n".join(page(platforms, memory)) + "\n"
        (arguments.pages / "benchmarks.md").write_text(text, encoding="utf-8")
        plot(platforms, arguments.pages / "benchmarks.svg")
    bars = [verdict for operation in everything for verdict in operation.verdicts()]
    short = list(shortfalls(everything))
    for line in short:
        print(line.replace("**", ""))
    print(f"{len(everything)} operations, {len(bars)} bars, {len(short)} fall short")


if __name__ == "__main__":
    main()
