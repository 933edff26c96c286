"""Writes docs/benchmarks.md and its plot from what the benchmarks printed: report.py RESULTS DOCS"""
import datetime
import os
import platform
import re
import subprocess
import sys
from pathlib import Path

import matplotlib

matplotlib.use("svg")
matplotlib.rcParams["svg.hashsalt"] = "benchmarks"  # the same figures give the same file
import matplotlib.pyplot as plt  # noqa: E402, behind the choice of what it draws with

from rows import ROWS  # noqa: E402

results, docs = map(Path, sys.argv[1:])


def figure(pattern, text, source):
    found = re.search(pattern, text, re.MULTILINE | re.DOTALL)
    if not found:
        sys.exit(f"report.py: bench/run-{source} printed nothing that matches {pattern!r}: bench/report/rows.py is out of date")
    return float(found[1])


def amount(value, unit):
    text = f"{value:.0f}" if value >= 100 else f"{value:.3g}"
    return f"{text} {unit}"


def machine():
    model = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    memory = int(re.search(r"MemTotal: +(\d+)", Path("/proc/meminfo").read_text())[1]) / 2**20
    release = re.search(r'PRETTY_NAME="(.*)"', Path("/etc/os-release").read_text())[1]
    return (f"{model[1] if model else platform.machine()}, {os.cpu_count()} cores, {memory:.0f} GiB, Linux "
            f"{platform.release().split('-')[0]}, {release}")


BUILDING = re.compile(r"^(?:== |\[\d+/\d+\]|ninja:).*\n?", re.MULTILINE)  # what the scripts say of their set-up
texts = {file.stem: BUILDING.sub("", file.read_text()) for file in sorted(results.glob("*.txt"))}
table, bars = [], []
for row in ROWS:
    if row.source not in texts:
        continue
    text = texts[row.source]
    ours = figure(row.ours, text, row.source)
    peers = {who: figure(pattern, text, row.source) for who, pattern in row.peers.items()}
    floor = figure(row.floor, text, row.source) if row.floor else None
    shown = ", ".join(f"{who} {amount(value, row.unit)} (**{value / ours:.1f}**)" for who, value in peers.items()) or "-"
    least = f"{amount(floor, row.unit)} ({ours / floor:.2f})" if floor else "-"
    table.append(f"| {row.title} | {amount(ours, row.unit)} | {shown} | {least} |")
    bars += [(f"{row.title}: {who}", value / ours) for who, value in peers.items()]

plot, axis = plt.subplots(figsize=(9, 0.24 * len(bars) + 1))
colors = ["#2f7d5b" if ratio >= 1 else "#b3442e" for _, ratio in bars]
axis.barh([name for name, _ in bars], [ratio for _, ratio in bars], color=colors, height=0.7)
for place, (_, ratio) in enumerate(bars):
    axis.text(ratio * 1.05, place, f"{ratio:.1f}", va="center", fontsize=7)
axis.set_xscale("log")
axis.axvline(1, color="black", linewidth=0.8)
axis.set_xlabel("takes that many times as much as ours")
axis.tick_params(labelsize=7)
axis.invert_yaxis()
axis.margins(x=0.12, y=0.01)
for side in ("top", "right"):
    axis.spines[side].set_visible(False)
plot.tight_layout()
plot.savefig(docs / "pictures/benchmarks.svg", metadata={"Date": None})

commit = subprocess.run(["git", "-C", str(docs), "describe", "--always", "--dirty"], capture_output=True, text=True)
measured = max(datetime.date.fromtimestamp(file.stat().st_mtime) for file in results.glob("*.txt"))
parts = "\n\n".join(f"### {name}\n\n`bench/run-{name}`\n\n```text\n{text.strip()}\n```" for name, text in texts.items())
(docs / "benchmarks.md").write_text(f"""# Benchmarks

Made by `scripts/bench.sh`, which runs each of `bench/run-*` beside what one would use instead, in the same run. Measured {measured}, at {commit.stdout.strip()}, on {machine()}. Times are medians; they move with the machine, the ratios hardly do.

The number in bold says how many times as much the other takes: above 1, ours is faster or smaller. The floor is what cannot be done without, such as the system calls alone; behind it stands how many times that ours takes.

| | ours | others | floor |
|---|---|---|---|
{chr(10).join(table)}

![How many times as much the others take](pictures/benchmarks.svg)

## All that was printed

{parts}
""")
