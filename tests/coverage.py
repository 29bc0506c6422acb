"""The branches of util.dll that no test takes: docs/coverage.md says what is counted.

    coverage.py ROOT FOLDER...  prints a line for each file and each branch, and the figures

gcov's own report, and the tools that read it, drop the mark of an exception's branches where a line was
never run; its JSON keeps it.
"""
import collections
import json
import math
import os
import re
import subprocess
import sys

GCOV = ["x86_64-w64-mingw32-gcov-posix", "--branch-probabilities", "--json-format", "--stdout"]


def reports(folder):
    """What gcov says of each object file below the folder; file names are seen from its parent."""
    for path, _, names in os.walk(folder):
        for name in names:
            if name.endswith(".gcno"):
                notes = os.path.join(path, name)
                answer = subprocess.run(GCOV + [notes], capture_output=True, text=True, cwd=folder, check=True)
                yield from (json.loads(line) for line in answer.stdout.splitlines())


def is_counted(text):
    """Not where the compiler alone branches: at a scope's end, and where a handler's type is compared."""
    return re.search(r"\w", text) and not re.match(r"\s*} catch \(", text)


def decisions(branches):
    """The counts without those of calls, which return or raise."""
    counts = []
    for branch in branches:
        if not branch["throw"]:
            counts.append(branch["count"])
        elif counts:
            counts.pop()
    return counts


def collect(root, folder):
    """{file: {line: [executions, [executions of each branch in one object file]...]}}"""
    files = collections.defaultdict(lambda: collections.defaultdict(lambda: [0]))
    for report in reports(folder):
        for file in report["files"]:
            name = os.path.relpath(os.path.join(folder, file["file"]), root)
            if not name.startswith("util" + os.sep):
                continue
            for line in file["lines"]:
                seen = files[name][line["line_number"]]
                seen[0] += line["count"]
                seen.append(decisions(line["branches"]))
    return files


def merged(instances):
    """Executions of each branch. A line of a header has its branches once for each instance in an
    object file; what all object files have a multiple of is one instance's."""
    size = math.gcd(*map(len, instances))
    return [sum(sum(counts[i::size]) for counts in instances) for i in range(size)]


def main(root, folder):
    lines = branches = lines_taken = branches_taken = 0
    for name, seen in sorted(collect(root, os.path.abspath(folder)).items()):
        with open(os.path.join(root, name), encoding="utf-8") as source:
            text = source.read().splitlines()
        for number, (count, *instances) in sorted(seen.items()):
            lines += 1
            lines_taken += count > 0
            taken = merged(instances) if is_counted(text[number - 1]) else []
            missing = taken.count(0)
            branches += len(taken)
            branches_taken += len(taken) - missing
            if missing or (count == 0 and re.search(r"\w", text[number - 1])):
                said = f"{missing} of {len(taken)}" if missing else "not run"
                print(f"{name}:{number}: {said}: {text[number - 1].strip()}")
    print(f"lines: {lines_taken / lines:.1%} ({lines_taken} of {lines})")
    print(f"branches: {branches_taken / branches:.1%} ({branches_taken} of {branches})")


main(*sys.argv[1:])
