"""Makes docs/performance.md of what was measured."""
import math
import os
import pathlib
import platform
import re
import subprocess

import goals
from measuring import TREE

PAGE = TREE / "docs/performance.md"
FINDINGS = "## What was found\n"
VERSIONS = (("exiv2", "--version"), ("exiftool", "-ver"), ("vips", "--version"), ("convert-im6.q16", "--version"),
            ("darktable-cli", "--version"), ("rawtherapee-cli", "-v"), ("sqlite3", "--version"))


def machine():
    model = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    memory = int(re.search(r"MemTotal:\s*(\d+)", pathlib.Path("/proc/meminfo").read_text())[1]) / 2**20
    return (f"{os.cpu_count()} cores ({model[1] if model else platform.machine()}), {memory:.0f} GiB, "
            f"Linux {platform.release()}")


def peers():
    found = []
    for name, option in VERSIONS:
        try:
            said = subprocess.run([name, option], capture_output=True, text=True).stdout
        except FileNotFoundError:
            continue
        number = re.search(r"\d+\.\d+[\d.-]*", said)
        found.append(f"{name.split('-im')[0]} {number[0] if number else ''}".strip())
    return ", ".join(found)


def three(number):
    """Three digits that count."""
    if number == 0 or not math.isfinite(number):
        return str(number)
    digits = max(0, 2 - math.floor(math.log10(abs(number))))
    return f"{number:,.{digits}f}"


def time_text(seconds):
    for factor, unit in ((1, "s"), (1e3, "ms"), (1e6, "µs")):
        if seconds * factor >= 1 or unit == "µs":
            return f"{three(seconds * factor)} {unit}"


def ratio_row(row, comparisons):
    seconds = comparisons.get(row.title, {})
    ours, theirs = seconds.get(row.ours), seconds.get(row.theirs)
    if not ours or not theirs or math.isnan(ours) or math.isnan(theirs):
        return None
    taken, faster = ours / theirs, theirs / ours
    if row.most:
        ratio, goal, met = f"{three(taken)} of it", f"at most {three(row.most)}", taken <= row.most
    elif row.faster:
        ratio, goal, met = f"{three(faster)} times as fast", f"at least {row.faster}", faster >= row.faster
    else:
        ratio = f"{three(faster)} times as fast" if faster >= 1 else f"{three(taken)} of it"
        goal, met = "", None
    return [row.what, time_text(ours), time_text(theirs), ratio, goal, met]


def figure_row(row, comparisons, figures):
    value = comparisons.get(row.key[0], {}).get(row.key[1]) if isinstance(row.key, tuple) else figures.get(row.key)
    if value is None:
        return None
    shown = time_text(value) if row.unit == "s" else f"{three(value)} {row.unit}"
    if row.most is None:
        return [row.what, shown, "", "", "", None]
    most = time_text(row.most) if row.unit == "s" else f"{row.most:,g} {row.unit}"
    return [row.what, shown, "", "", f"at most {most}", value <= row.most]


def line(cells):
    *cells, met = cells
    return "| " + " | ".join(cells) + {True: " | yes |", False: " | **no** |", None: " | |"}[met]


def tables(comparisons, figures, run):
    lines, missing = [], []
    for section, rows in goals.rows(run).items():
        lines += [f"| **{section}** | | | | | |"]
        for row in rows:
            made = (ratio_row(row, comparisons) if isinstance(row, goals.Ratio)
                    else figure_row(row, comparisons, figures))
            if made:
                lines.append(line(made))
            else:
                missing.append(f"{section}: {row.what}")
    return lines, missing


def growth(comparisons, figures, run):
    head = [f"{size:,}" for size in run.sizes]
    lines, missing = ["| Photos | " + " | ".join(head) + " |", "|---" * (len(head) + 1) + "|"], []
    for what, key in goals.GROWTH.items():
        if isinstance(key, tuple):
            costs = [comparisons.get(key[0].format(size), {}).get(key[1]) for size in run.sizes]
            values = [cost and 1e6 * cost / size for cost, size in zip(costs, run.sizes)]
        else:
            values = [figures.get(key.format(size)) for size in run.sizes]
        lines.append(f"| {what} | " + " | ".join("" if value is None else three(value) for value in values) + " |")
        missing += [f"Growth: {what}"] if None in values else []
    return lines, missing


def when(steps):
    """Whether all is of one run; else which steps are of which."""
    runs = {}
    for name, step in steps.items():
        runs.setdefault(step["run"], []).append(name)
    if len(runs) == 1:
        return f"Measured in one run, begun {min(runs)}, ended {max(step['date'] for step in steps.values())}"
    return "Measured in several runs, " + "; ".join(f"begun {of}: {', '.join(names)}" for of, names in runs.items())


def findings():
    """What people wrote into the page stays."""
    text = PAGE.read_text() if PAGE.exists() else ""
    return text[text.index(FINDINGS):] if FINDINGS in text else FINDINGS


def write(steps, run):
    comparisons, figures = ({key: value for step in steps.values() for key, value in step[kind].items()}
                            for kind in ("comparisons", "figures"))
    lines, missing = tables(comparisons, figures, run)
    grown, ungrown = growth(comparisons, figures, run)
    missing += ungrown
    loads = [step["load"] for step in steps.values()]
    text = "\n".join([
        "# Performance", "",
        "Made by `bench/compare/run`, which builds what it needs, makes its inputs and measures: contenders take turns "
        "on the same files, from memory unless said otherwise, medians of their rounds. Ratios travel from machine to "
        "machine, seconds do not.", "",
        f"{when(steps)}, on {machine()}; {sum(step['seconds'] for step in steps.values()) / 60:.0f} minutes; load "
        f"before the steps {min(loads):.1f} to {max(loads):.1f}. Beside {peers()}.", "",
        "| What | Ours | Theirs | Ratio | Goal | Met |", "|---|---|---|---|---|---|", *lines, "",
        *(f"- {note}" for note in goals.NOTES), "",
        *(["## Not measured", "", *(f"- {what}" for what in missing), ""] if missing else []),
        "## Growth", "", *grown, "", findings().rstrip(), ""])
    return text, missing
