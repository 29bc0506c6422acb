"""Writes docs/benchmarks.md, its picture and the table of kernels, and checks the bars.

usage: report.py [--pages FOLDER] PLATFORM=FILE...

The data are lines of tab-separated values, described in harness.cpp. The bars are in bars.tsv beside this
file. Exits with 1 when a bar is missed by more than its noise. Without --pages no page is written, and
only the bars of measured operations are checked.
"""

import argparse
import collections
import html
import pathlib
import platform as machine
import subprocess
import sys

HERE = pathlib.Path(__file__).parent
GROWTH_LIMIT = 8  # 4 is linear, 16 is quadratic; the rest is room for the processor's caches
MEMORY_LIMIT = 1.05  # memory at the end of a long run, as a multiple of that after a tenth of it
BLOCKS_LIMIT = 50  # new heap blocks meanwhile; a leak adds one for each of some hundred repetitions

KERNEL_SIZES = 8, 24, 60, 260, 4096  # of kernels_bench.cpp, as the table's columns

# What the picture shows: the operations that programs call most, and the peer of each.
PICTURE = [
    ("natively", 'format "%s-%d", 20 bytes', "absl::StrCat"),
    ("natively", "split a date", "absl::StrSplit"),
    ("natively", 'split 1 MB at ","', "absl::StrSplit"),
    ("natively", "replace, 26 bytes", "boost::replace_all_copy"),
    ("natively", "escape, 40 bytes", "pugixml"),
    ("natively", "decode, 1 MB, one in 10 bytes", "pugixml"),
    ("natively", "to_lower, 65600 bytes", "absl::AsciiStrToLower"),
    ("under Wine", 'format "%s-%d", 200 bytes', "fmt::sprintf"),
    ("under Wine", "escape, 40 bytes", "boost::replace_all, five passes"),
    ("under Wine", "getDirectoryList, per file", "std::filesystem, status, size, sort"),
    ("under Wine", "Poll, 63 sockets in a ring", "select over all"),
    ("under Wine", "UTIL_copy, per megabyte", "CopyFileA"),
]


class Operation:
    def __init__(self, platform, section, name):
        self.platform, self.section, self.name = platform, section, name
        self.times = {}  # variant -> (role, median)
        self.ratios = {}  # (subject, against) -> median

    def fastest(self, role):
        variants = {name: time for name, (r, time) in self.times.items() if r == role}
        return min(variants, key=variants.get) if variants else None

    def ratio(self, against, subject="util"):
        return self.ratios.get((subject, against))


Bar = collections.namedtuple("Bar", "platform operation subject against at_most noise reason")
Verdict = collections.namedtuple("Verdict", "platform operation what ratio at_most noise met reason", defaults=[""])


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
    return list(operations.values()), memory


def bars():
    lines = (HERE / "bars.tsv").read_text(encoding="utf-8").splitlines()
    return [Bar(*line.split("\t")) for line in lines if not line.startswith("#")]


def verdicts(operations, memory):
    """A verdict for each bar whose operation was measured, and for growth and memory."""
    for operation in operations:
        for bar in bars():
            if bar.operation != operation.name or bar.platform not in ("both", operation.platform):
                continue
            ratio = operation.ratio(bar.against, bar.subject)
            if not bar.at_most or ratio is None:
                continue
            at_most, noise = float(bar.at_most), int(bar.noise)
            setting = bar.subject.partition(", ")[2]
            what = f"{setting} against one" if setting else f"against {bar.against}"
            yield Verdict(operation.platform, operation.name, what, ratio, at_most, noise,
                          ratio <= at_most * (1 + noise / 100), bar.reason)
        growth = operation.ratio("util", "util, four times the size")
        if growth is not None:
            yield Verdict(operation.platform, operation.name, "four times the size", growth,
                          GROWTH_LIMIT, 0, growth <= GROWTH_LIMIT)
    for pattern, _, tenth, end, _, blocks in memory:
        ratio = float(end.split()[0]) / float(tenth.split()[0])
        yield Verdict("under Wine", f"memory: {pattern}", f"the end against a tenth, {blocks} heap blocks",
                      ratio, MEMORY_LIMIT, 0, ratio <= MEMORY_LIMIT and int(blocks) <= BLOCKS_LIMIT)


def unmeasured(operations):
    """The bars of which the data contain no figure."""
    measured = {(o.platform, o.name, *pair) for o in operations for pair in o.ratios}
    for bar in bars():
        for platform in ("natively", "under Wine") if bar.platform == "both" else (bar.platform,):
            if bar.at_most and (platform, bar.operation, bar.subject, bar.against) not in measured:
                yield f"{platform}, {bar.operation}, against {bar.against}"


def figure(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def times(ratio):
    return f"{ratio:.2f}" if ratio >= 0.1 else f"{ratio:.2g}"


def line(cells):
    return "| " + " | ".join(cells) + " |"


def bar_table(rows):
    yield "| Operation | platform | bar | ratio | at most | noise | met | remark |"
    yield "|---|---|---|--:|--:|--:|---|---|"
    for row in rows:
        yield line([row.operation, row.platform, row.what, times(row.ratio), times(row.at_most),
                    f"{row.noise} %", "yes" if row.met else "**no**", row.reason])


def table(operations):
    yield "| Operation | util | × limit | limit | × peer | strongest peer |"
    yield "|---|--:|--:|---|--:|---|"
    for operation in operations:
        cells = [operation.name, figure(operation.times["util"][1])]
        for other in (operation.fastest("limit"), operation.fastest("peer")):
            cells += [times(operation.ratio(other)) if other else "",
                      f"{other}, {figure(operation.times[other][1])}" if other else ""]
        yield line(cells)


def growth_table(operations):
    yield "| Function | 1.5 KB | twice | four times |"
    yield "|---|--:|--:|--:|"
    for operation in operations:
        yield line([operation.name.partition(": ")[2], figure(operation.times["util"][1])] +
                   [times(operation.ratio("util", f"util, {size} the size"))
                    for size in ("twice", "four times")])


def by_section(operations):
    sections = collections.defaultdict(list)
    for operation in operations:
        sections[operation.section.split(" ", 1)[1]].append(operation)
    return sections


def processor():
    for text in pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines():
        if text.startswith("model name"):
            return text.split(":", 1)[1].strip()
    return machine.machine()


def first_line(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout.splitlines()[0]


def the_machine():
    return f"Machine: {processor()}; {first_line('g++', '--version')}; {first_line('wine', '--version')}."


def page(platforms, memory, checked):
    text = (HERE / "page.md").read_text(encoding="utf-8").rstrip()
    short = [row for row in checked if not row.met]
    yield text
    yield ""
    yield the_machine()
    yield ""
    yield "## Bars"
    yield ""
    yield f"{len(checked)} checked, {len(short)} missed by more than the noise."
    yield ""
    yield from bar_table(row for row in checked if row.what != "four times the size")
    yield ""
    yield "## Slower by nature"
    yield ""
    yield "| Operation | platform | slower than | ratio | because it |"
    yield "|---|---|---|--:|---|"
    known = {(o.platform, o.name): o for rows in platforms.values() for o in rows}
    for bar in bars():
        operation = known.get((bar.platform, bar.operation))
        if not bar.at_most and operation:
            against = "one thread" if bar.against == "util" else bar.against
            yield line([bar.operation, bar.platform, against,
                        times(operation.ratio(bar.against, bar.subject)), bar.reason])
    for platform, rows in platforms.items():
        for section, group in by_section(rows).items():
            if section == "Kernels":
                continue  # a table of its own, in util/internal/kernels/README.md
            yield ""
            yield f"## {section}, {platform}"
            yield ""
            yield from (growth_table if section.startswith("Growth") else table)(group)
    if memory:
        yield ""
        yield "## Memory of long runs, under Wine"
        yield ""
        yield "| Pattern | at the start | after a tenth | at the end | peak | heap blocks, tenth to end |"
        yield "|---|--:|--:|--:|--:|--:|"
        yield from map(line, memory)


def kernel_table(platforms, lines):
    """The lines of util/internal/kernels/README.md, with the measured figures in its table."""
    ratios = {(platform, o.name): o.ratio("scalar") for platform, rows in platforms.items()
              for o in rows if o.ratio("scalar")}
    for text in lines:
        if text.startswith("| `"):
            name, *_, serves = text.strip("| ").split(" | ")
            cells = []
            for size in KERNEL_SIZES:
                key = f"{name.strip('`')}, {size} bytes"
                pair = [ratios.get((platform, key)) for platform in ("natively", "under Wine")]
                cells.append(" / ".join(f"{1 / ratio:.1f}" for ratio in pair if ratio))
            text = line([name, *cells, serves])
        elif text.startswith("Machine: "):
            text = the_machine()
        yield text


def picture(operations):
    """Horizontal bars: the time of util where that of the peer is 1."""
    known = {(o.platform, o.name): o for o in operations}
    rows = [(platform, name, peer, known[platform, name].ratio(peer))
            for platform, name, peer in PICTURE if (platform, name) in known]
    left, unit, top, height = 360, 330, 62, 26
    bottom = top + height * len(rows)
    yield (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 880 {bottom + 30}" '
           'font-family="sans-serif" font-size="13">')
    yield f'<rect width="880" height="{bottom + 30}" fill="white"/>'
    yield '<text x="10" y="22" font-size="16" font-weight="bold">Time of util, where the peer takes 1</text>'
    yield '<text x="10" y="42" fill="#555">Shorter is faster. Grey line: as fast as the peer.</text>'
    for i, (platform, name, peer, ratio) in enumerate(rows):
        y = top + height * i
        width = min(ratio, 1.4) * unit
        label = html.escape(f"{name} ({'Wine' if platform == 'under Wine' else 'native'})")
        yield f'<text x="{left - 8}" y="{y + 16}" text-anchor="end">{label}</text>'
        yield f'<rect x="{left}" y="{y + 4}" width="{width:.0f}" height="{height - 8}" fill="#3572b0"/>'
        inside = width > 150
        yield (f'<text x="{left + (6 if inside else width + 6):.0f}" y="{y + 17}" '
               f'fill="{"white" if inside else "#333"}">{times(ratio)} of {html.escape(peer.split(",")[0])}</text>')
    yield (f'<line x1="{left + unit}" x2="{left + unit}" y1="{top}" y2="{bottom}" '
           'stroke="#999" stroke-dasharray="4 3"/>')
    for tick in (0, 0.5, 1):
        yield f'<text x="{left + tick * unit:.0f}" y="{bottom + 18}" text-anchor="middle">{tick:g}</text>'
    yield "</svg>"


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
    operations = [operation for rows in platforms.values() for operation in rows]
    checked = list(verdicts(operations, memory))
    missing = list(unmeasured(operations)) if arguments.pages else []
    if arguments.pages:
        for name, lines in (("benchmarks.md", page(platforms, memory, checked)),
                            ("benchmarks.svg", picture(operations))):
            (arguments.pages / name).write_text("\n".join(lines) + "\n", encoding="utf-8")
        kernels = HERE.parent / "util/internal/kernels/README.md"
        lines = kernels.read_text(encoding="utf-8").splitlines()
        kernels.write_text("\n".join(kernel_table(platforms, lines)) + "\n", encoding="utf-8")
    missed = [row for row in checked if not row.met]
    for row in missed:
        print(f"missed: {row.platform}, {row.operation}, {row.what}: {times(row.ratio)}, "
              f"at most {times(row.at_most)} and {row.noise} % noise")
    for bar in missing:
        print(f"not measured: {bar}")
    print(f"{len(operations)} operations, {len(checked)} bars, {len(missed)} missed")
    return 1 if missed or missing else 0


if __name__ == "__main__":
    sys.exit(main())
