#!/usr/bin/env python3
"""Prints the tables of a benchmark run: times, ratio to the fastest peer, growth, and the bars to reach.

usage: bench_table.py RESULTS    the folder that scripts/bench filled
Exit code 1 when a benchmark reported an error, as a result that differs from a peer's; a missed bar is only marked.
"""

import csv
import json
import math
import statistics
import sys
from collections import defaultdict
from pathlib import Path

OURS = "zbr"
PEERS = ["clipper", "clipper-tree", "geos", "boost", "cgal", "openmesh", "std", "pmr", "malloc"]
# "zbr-region" takes and gives regions, "zbr-exact" through the exact arrangement; "zbr-single" makes a call for each pair;
# "zbr-linear" is our test of one point, without an index.
OUR_OTHERS = ["zbr-region", "zbr-exact", "zbr-single", "zbr-linear"]
COLUMNS = [OURS] + OUR_OTHERS + PEERS
# Families whose peers are others than those of planar loops, by the beginnings of their names: a table each.
OWN_TABLES = ["mesh", "alloc", "segs", "clip"]

# Upper bounds in nanoseconds of CPU time per unit (input edge, crossing, ring, point), at the sizes they were set for.
BARS = {
    "star": (60, {100_000, 1_000_000}),
    "coast": (60, {100_000, 1_000_000}),
    "tiles": (120, {10_000, 100_000}),
    "holes": (120, {10_000, 100_000}),
    "comb": (120, {1000, 2000}),
    "grid": (200, {128, 512}),
    "nest": (30e6 / 10_000, {10_000}),
    "nestw": (60e6 / 100_000, {100_000}),
    "locate-ring": (300, {100_000}),
    "locate-region": (300, {100_000}),
}
# Lower bounds of the ratio to the fastest peer.
FAMILY_RATIO_BARS = {
    "star": 12.0, "coast": 12.0, "countries": 5.0, "borders": 5.0, "revision": 7.0, "tiles": 4.0, "holes": 4.0, "comb": 1.5,
    "combr": 1.5, "grid": 2.0, "pairs": 4.0, "circles": 8.0, "rects": 1.5,
}
RATIO_BARS = {
    ("mesh", "ordered"): (2.0, {100_000, 1_000_000}),
    ("mesh", "mixed"): (2.0, {100_000, 1_000_000}),
    ("alloc", "buffers"): (1.0, {1_000_000, 10_000_000}),
    ("alloc", "buffers-again"): (1.0, {1_000_000, 10_000_000}),
    ("alloc", "strings"): (1.0, {1_000_000, 10_000_000}),
    ("alloc", "strings-again"): (1.0, {1_000_000, 10_000_000}),
}
GROWTH_BAR = 1.1
SECONDS_BARS = {"segs": (3.0, 1_000_000)}  # upper bound of one run's CPU seconds, from that size on
OPERATIONS = 5
ALL_OPERATIONS_BAR = 2.5  # five operations in one call, in terms of the average single one
MEMORY_BAR = (150, "coast", 1_000_000)  # MiB above the inputs

# Hidden lines. The peer's visible length may differ from ours by this part, and by more in scenes where it is understood why. Edges
# of three and more triangles are not counted: either library may draw one several times.
HIDDEN_PEER = "occt"
HIDDEN_TOLERANCE = 0.0002
# Our time at most, in terms of the least that rays take and of a plain program's. What takes less than so many seconds is not judged.
HIDDEN_BARS = {"rays": 1.2, "plain": 1.0}
HIDDEN_JUDGED_FROM = 0.01
HIDDEN_DIFFERENCES = {
    "lattice": (0.01, "where a line runs exactly under a side shared by two nearer triangles, the peer draws hidden parts of it"),
    "beetle": (0.002, "flaps folded flat onto themselves: which of two triangles in one plane hides the other is a tie"),
}
OUTLINE_PEERS = ["geos", "clipper", "cgal"]
OUTLINE_TOLERANCE = 1e-6  # of the area
OUTLINE_GROWTH_BAR = 1.2
HIDDEN_STEPS = ["model", "scene", "scenes-4", "remove", "chain", "hidden-0", "hidden-3"]
GROWTH_FROM = 8_000  # triangles: smaller scenes tell little about growth


class Measured:
    """The runs of one benchmark: family, size, operation, peer."""

    def __init__(self):
        self.nanoseconds = []
        self.units = 0.0
        self.unit = ""
        self.note = ""  # how the result differs from ours, where that is known of the peer

    def per_unit(self):
        return statistics.median(self.nanoseconds) / self.units


def read_benchmarks(folder):
    """Returns {(family, size, operation): {peer: Measured}} and the list of errors, in the order of the files."""
    table = defaultdict(dict)
    errors = []
    to_nanoseconds = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
    for path in sorted(Path(folder).glob("*.json")):
        for run in json.loads(path.read_text())["benchmarks"]:
            if run["run_type"] != "iteration":
                continue
            family, size, operation, peer = run["run_name"].split("/")[:4]
            if run.get("error_occurred"):
                errors.append(f"{run['run_name']}: {run['error_message']}")
                continue
            measured = table[family, int(size), operation].setdefault(peer, Measured())
            measured.nanoseconds.append(run["cpu_time"] * to_nanoseconds[run["time_unit"]])
            measured.units = run["units"]
            measured.unit, _, measured.note = run["label"].partition("; ")
    add_sums(table)
    return table, list(dict.fromkeys(errors))


def add_sums(table):
    """Only we form several results in one call: beside that belong the sums of the peers' single operations."""
    for family, size, _ in [key for key in table if key[2] == "all"]:
        singles = [row for (f, s, o), row in table.items() if (f, s) == (family, size) and o != "all"]
        for peer in PEERS:
            if len(singles) == OPERATIONS and all(peer in row for row in singles):
                total = table[family, size, "all"].setdefault(peer, Measured())
                total.nanoseconds = [sum(statistics.median(row[peer].nanoseconds) for row in singles)]
                total.units, total.unit = singles[0][peer].units, singles[0][peer].unit


def fastest_peer(row):
    times = [row[peer].per_unit() for peer in PEERS if peer in row]
    return min(times) if times else None


def growth(table, key, value):
    """Exponent by which the time value(row) * units grows from the size before, in units; where these are the same (points
    asked about), in the size. None where there is nothing to compare."""
    family, size, operation = key
    smaller = [s for f, s, o in table if f == family and o == operation and s < size]
    if not smaller:
        return None
    row, before = table[key], table[family, max(smaller), operation]
    if OURS not in row or OURS not in before or value(row) is None or value(before) is None:
        return None
    units = row[OURS].units / before[OURS].units
    return math.log(value(row) / value(before) * units) / math.log(units if units != 1.0 else size / max(smaller))


def verdict(bound, met):
    return f"{bound} {'met' if met else 'MISSED'}"


def time_verdict(table, key):
    family, size, operation = key
    row = table[key]
    if OURS not in row or operation == "build":
        return ""
    if operation == "all":
        singles = [other for (f, s, o), other in table.items() if (f, s) == (family, size) and o != "all" and OURS in other]
        if len(singles) < OPERATIONS:
            return ""
        average = statistics.mean(other[OURS].per_unit() for other in singles)
        ratio = row[OURS].per_unit() / average
        return verdict(f"{ratio:.2f} x one op <= {ALL_OPERATIONS_BAR}", ratio <= ALL_OPERATIONS_BAR)
    if family in BARS and size in BARS[family][1]:
        bar = BARS[family][0]
        return verdict(f"<= {bar:.0f}", row[OURS].per_unit() <= bar)
    bar, sizes = RATIO_BARS.get((family, operation), (None, ()))
    if size in sizes and fastest_peer(row):
        return verdict(f"{bar} x", fastest_peer(row) / row[OURS].per_unit() >= bar)
    bar, least = SECONDS_BARS.get(family.partition("-")[0], (None, 0))
    if bar and size >= least:
        seconds = row[OURS].per_unit() * row[OURS].units * 1e-9
        return verdict(f"{seconds:.2f} s <= {bar:.0f}", seconds <= bar)
    return ""


def text_number(value, form):
    return "-" if value is None else format(value, form)


def print_table(head, lines, left=(0, 2)):
    """Columns are aligned to the right but those in `left` and the last one."""
    widths = [max(len(line[i]) for line in [head] + lines) for i in range(len(head))]
    for line in [head, ["-" * width for width in widths]] + lines:
        print("  ".join(cell.ljust(w) if i in (*left, len(head) - 1) else cell.rjust(w)
                        for i, (cell, w) in enumerate(zip(line, widths))).rstrip())
    print()


def time_cell(row, column):
    return f"{row[column].per_unit():.1f}{'*' if row[column].note else ''}" if column in row else "-"


def print_notes(table):
    notes = [f"* {'/'.join(map(str, key))}/{peer}: {measured.note}"
             for key, row in table.items() for peer, measured in row.items() if measured.note]
    if notes:
        print("\n".join(notes) + "\n")


def print_times(table):
    """The planar families in one table, each of the others in one of its own."""
    for kind in [""] + OWN_TABLES:
        kinds = {key: key[0].partition("-")[0] for key in table}
        part = {key: row for key, row in table.items() if kinds[key] == kind or kind == "" and kinds[key] not in OWN_TABLES}
        if part:
            print_times_table(part)
    print("CPU time, median; ratio: fastest peer / zbr; growth: exponent from the size before in units, zbr's and the fastest")
    print(f"peer's, ! marks more than {GROWTH_BAR}; clipper-tree is Clipper with a nested result, as ours always is; for all")
    print("operations in one call the peers' times are added up; * a result that differs as listed below. Memory that a run has")
    print("freed is kept for the next. Meshes: ordered row after row, or mixed; map is the table of edges by itself, of a mixed one.")
    print("Segments: std sorts as many by coordinates, without tolerance; same has two sets. Clipping: lines of the given kinds over")
    print("one ring of so many edges.\n")
    print_notes(table)


def print_times_table(table):
    columns = [column for column in COLUMNS if any(column in row for row in table.values())]
    head = ["family", "size", "operation"] + columns + ["ns per", "ratio", "growth", "peer's", "bar"]
    lines = []
    for key, row in table.items():
        ours = row[OURS].per_unit() if OURS in row else None
        peer = fastest_peer(row)
        exponent = growth(table, key, lambda r: r[OURS].per_unit())
        grown = text_number(exponent, ".2f")
        if exponent is not None and exponent > GROWTH_BAR and key[2] not in ("build", "query"):
            grown += "!"
        lines.append([key[0], str(key[1]), key[2]]
                     + [time_cell(row, column) for column in columns]
                     + [next(iter(row.values())).unit, text_number(peer / ours if peer and ours else None, ".1f"), grown,
                        text_number(growth(table, key, fastest_peer), ".2f"), time_verdict(table, key)])
    print_table(head, lines)


def print_first(path):
    """First and repeated calls: what each of our ways takes, and the fastest peer's time in terms of it."""
    rows = defaultdict(dict)
    for family, size, operation, library, unit, first, again in csv.reader(path.read_text().splitlines()):
        rows[family, size, operation, unit][library] = (float(first), float(again))
    ours = [library for library in [OURS] + OUR_OTHERS if any(library in row for row in rows.values())]
    lines = []
    for (family, size, operation, unit), row in rows.items():
        peers = {library: times for library, times in row.items() if library in PEERS}
        least = [min((times[i] for times in peers.values()), default=None) for i in (0, 1)]
        cells = []
        for library in ours:
            times = row.get(library)
            cells += [text_number(times and times[i], ".1f") for i in (0, 1)]
            cells += [text_number(least[i] / times[i] if times and peers else None, ".1f") for i in (0, 1)]
        bar = FAMILY_RATIO_BARS.get(family)
        ratio = least[1] / row[OURS][1] if OURS in row and peers else None
        lines.append([family, size, operation] + cells + [text_number(t, ".1f") for t in least] + [unit]
                     + [verdict(f"{bar} x", ratio >= bar) if bar and ratio else ""])
    head = ["family", "size", "operation"]
    for library in ours:
        head += [library, "again", "ratio", "again"]
    print_table(head + ["peer", "again", "ns per", "bar"], lines)
    print("CPU time of the first call in a process and of later ones, medians of processes that took turns; ratio: fastest peer / ours.\n")


def print_memory(path):
    bar, bar_family, bar_size = MEMORY_BAR
    rows = defaultdict(dict)
    for family, size, operation, peer, mib in csv.reader(path.read_text().splitlines()):
        rows[family, int(size), operation][peer] = float(mib)
    columns = [column for column in COLUMNS if any(column in row for row in rows.values())]
    lines = []
    for (family, size, operation), row in rows.items():
        judged = OURS in row and (family, size) == (bar_family, bar_size) and operation != "all"
        lines.append([family, str(size), operation] + [text_number(row.get(column), ".1f") for column in columns]
                     + [verdict(f"<= {bar}", row[OURS] <= bar) if judged else ""])
    print_table(["family", "size", "operation"] + columns + ["bar"], lines)
    print("Peak memory above the inputs in MiB, results included.\n")


def read_hidden(path):
    """Returns {(scene, triangles, edges): {library: {operation: value}}} in the order of the file."""
    scenes = defaultdict(lambda: defaultdict(dict))
    names = {}
    for _, scene, triangles, edges, operation, library, value, _ in csv.reader(path.read_text().splitlines()):
        # A run that was stopped knows no sizes: it belongs to the scene of that name.
        key = names.setdefault(scene, (scene, int(triangles), int(edges)))
        scenes[key][library][operation] = float(value)
    return scenes


def short_name(scene):
    return Path(scene).stem if "/" in scene else scene


def kind_of(scene):
    return short_name(scene).partition(":")[0]


def hidden_growth(scenes, key, library, operation="remove"):
    """Exponent of a time in triangles, from the smallest scene of this kind that counts."""
    if ":" not in key[0]:
        return None
    same = [other for other in scenes if kind_of(other[0]) == kind_of(key[0]) and GROWTH_FROM <= other[1] < key[1]]
    if not same:
        return None
    first = min(same, key=lambda other: other[1])
    times = [scenes[k][library].get(operation) for k in (first, key)]
    return math.log(times[1] / times[0]) / math.log(key[1] / first[1]) if all(times) else None


def length_difference(ours, other):
    ours_length, other_length = (library["visible"] - library["visible-junctions"] for library in (ours, other))
    return other_length / ours_length - 1.0 if ours_length else 0.0


def compare_lengths(key, libraries):
    """Returns the text of the column, and an error or None."""
    ours, peer = libraries.get(OURS, {}), libraries.get(HIDDEN_PEER, {})
    if "visible" not in ours or "visible" not in peer:
        return "-", None
    difference = length_difference(ours, peer)
    tolerance, note = HIDDEN_DIFFERENCES.get(kind_of(key[0]), (HIDDEN_TOLERANCE, ""))
    text = f"{100 * difference:+.3f} %{'*' if note else ''}"
    if abs(difference) <= tolerance:
        return text, None
    return text, f"{key[0]}: visible length differs by {100 * difference:.3f} % from the peer's"


def hidden_ratio_cells(ours, libraries):
    """Our removal without quadtrees, and for each library with a bar: ours in terms of its, with ! where that is more than the bar,
    and the length it shows."""
    least = ours.get("remove-all", ours.get("remove"))  # a single repetition has no other
    cells = [text_number(least, ".4f")]
    for library, bar in HIDDEN_BARS.items():
        other = libraries.get(library, {})
        if not other.get("remove") or not least:
            cells += [text_number(other.get("remove"), ".4f"), "-", "-"]
            continue
        ratio = least / other["remove"]
        missed = ratio > bar and least >= HIDDEN_JUDGED_FROM
        cells += [f"{other['remove']:.4f}", f"{ratio:.2f}{'!' if missed else ''}", f"{100 * length_difference(ours, other):+.2f} %"]
    return cells


def print_hidden(path):
    scenes = read_hidden(path)
    lines, steps, beside, errors = [], [], [], []
    for key, libraries in scenes.items():
        ours, peer = libraries.get(OURS, {}), libraries.get(HIDDEN_PEER, {})
        agreement, error = compare_lengths(key, libraries)
        errors += [error] if error else []
        grown = hidden_growth(scenes, key, OURS)
        peer_time = text_number(peer.get("remove"), ".3f")
        if "stopped-after" in peer:
            peer_time = f"> {peer['stopped-after']:.0f}"
        ratio = peer["remove"] / ours["remove"] if "remove" in peer and ours.get("remove") else None
        lines.append([short_name(key[0]), str(key[1]), str(key[2]), text_number(ours.get("remove"), ".4f"), peer_time,
                      text_number(ratio, ".1f"), text_number(grown, ".2f") + ("!" if (grown or 0) > GROWTH_BAR else ""),
                      text_number(hidden_growth(scenes, key, HIDDEN_PEER), ".2f"), agreement]
                     + [text_number(library.get(what), ".0f") for what in ("memory", "memory-added") for library in (ours, peer)])
        beside.append([short_name(key[0])] + hidden_ratio_cells(ours, libraries)
                      + [text_number(hidden_growth(scenes, key, library, step), ".2f")
                         for library, step in [(OURS, "remove-all")] + [(library, "remove") for library in HIDDEN_BARS]])
        steps.append([short_name(key[0])] + [text_number(ours.get(step), ".4f") for step in HIDDEN_STEPS])
    print_table(["scene", "triangles", "edges", OURS, HIDDEN_PEER, "ratio", "growth", "peer's", "length", "MiB", "peer's", "added",
                 "peer's"], lines, left=(0,))
    print(f"CPU seconds of removing the hidden lines, median; ratio: {HIDDEN_PEER} / {OURS}; growth: exponent in triangles from the")
    print(f"smallest scene of that kind above {GROWTH_FROM}, ! marks more than {GROWTH_BAR}; length: what the peer shows more than we")
    print("do, edges of three and more triangles apart; memory of the whole process at its peak, and what of it the removal added.")
    shown = {kind_of(key[0]) for key in scenes}
    print("".join(f"* {kind}: {note}\n" for kind, (_, note) in HIDDEN_DIFFERENCES.items() if kind in shown))
    print_table(["scene", OURS] + [cell for library in HIDDEN_BARS for cell in (library, "of it", "length")]
                + [f"growth {library}" for library in (OURS, *HIDDEN_BARS)], beside, left=(0,))
    bars = ", ".join(f"{bar} of {library}" for library, bar in HIDDEN_BARS.items())
    print("CPU seconds of the removal without quadtrees (RemoveAll, one thread) beside what a ray tracer needs at least (its tree, and")
    print(f"16 rays for each edge) and beside a plain program with a grid; ours in terms of these, ! marks more than {bars}")
    print(f"from {HIDDEN_JUDGED_FROM} s on; the length that they show beyond ours; growth as above.\n")
    print_table(["scene"] + HIDDEN_STEPS, steps, left=(0,))
    print("CPU seconds of our steps: the mesh becomes a model, that a scene, four scenes; removal; visible lines as polylines;")
    print("hidden stretches as they are, and as a person draws them.\n")
    return errors


def outline_differences(key, libraries):
    """Returns the largest relative difference of a peer's area, other numbers of loops as text, and errors."""
    ours = libraries.get(OURS, {})
    if "area" not in ours:
        return None, "", [f"{key[0]}: no outline"]
    worst, loops, errors = None, "", []
    for peer in OUTLINE_PEERS:
        other = libraries.get(peer, {})
        if "area" not in other:
            continue
        difference = other["area"] / ours["area"] - 1.0 if ours["area"] else other["area"]
        worst = difference if worst is None else max(worst, difference, key=abs)
        if not abs(difference) <= OUTLINE_TOLERANCE:
            errors.append(f"{key[0]}: the area by {peer} differs by {difference:.2e}")
        if other["loops"] != ours["loops"]:
            loops += f" {peer} {other['loops']:.0f}"
    return worst, loops, errors


def outline_peer_time(libraries, peer):
    other = libraries.get(peer, {})
    if "stopped-after" in other:
        return f"> {other['stopped-after']:.0f}"
    return text_number(other.get("union"), ".3f")


def print_outlines(path):
    scenes = read_hidden(path)
    lines, errors = [], []
    for key, libraries in scenes.items():
        ours = libraries.get(OURS, {})
        worst, loops, found = outline_differences(key, libraries)
        errors += found
        fresh, remove = ours.get("outline-fresh"), ours.get("remove")
        peers = [libraries[peer]["union"] for peer in OUTLINE_PEERS if "union" in libraries.get(peer, {})]
        added = [libraries[peer]["memory-added"] for peer in OUTLINE_PEERS if "union" in libraries.get(peer, {})]
        grown = hidden_growth(scenes, key, OURS, "outline-fresh")
        lines.append([short_name(key[0]), str(key[1])]
                     + [text_number(ours.get(step), ".4f") for step in ("outline-fresh", "outline", "remove")]
                     + [verdict(f"{fresh / remove:.2f} <= 1", fresh <= remove) if fresh and remove else "-"]
                     + [outline_peer_time(libraries, peer) for peer in OUTLINE_PEERS]
                     + [text_number(min(peers) / fresh if peers and fresh else None, ".1f"),
                        text_number(grown, ".2f") + ("!" if (grown or 0) > OUTLINE_GROWTH_BAR else ""),
                        text_number(ours.get("memory-added"), ".0f"), text_number(min(added) if added else None, ".0f"),
                        text_number(ours.get("points"), ".0f"), text_number(worst, ".0e"),
                        text_number(ours.get("loops"), ".0f") + loops])
    print_table(["scene", "triangles", OURS, "processed", "remove", "of removal"] + OUTLINE_PEERS
                + ["ratio", "growth", "added", "peer's", "points", "area", "loops"], lines, left=(0,))
    print("CPU seconds, median: our outline of a fresh scene (classification included), of one whose hidden lines are removed, that")
    print("removal, and what the first is of it; the peers' unions of the projected triangles; ratio: fastest peer / ours; growth:")
    print(f"exponent in triangles from the smallest scene of that kind above {GROWTH_FROM}, ! marks more than {OUTLINE_GROWTH_BAR}; "
          "MiB added by")
    print("ours and by the thriftiest peer; points of our loops; the largest relative difference of a peer's area; our loops, and")
    print("those of peers that have another number.\n")
    return errors


def main():
    if len(sys.argv) != 2 or not Path(sys.argv[1]).is_dir():
        sys.exit(__doc__)
    table, errors = read_benchmarks(sys.argv[1])
    if table:
        print_times(table)
    first = Path(sys.argv[1]) / "first.csv"
    if first.exists():
        print_first(first)
    memory = Path(sys.argv[1]) / "memory.csv"
    if memory.exists():
        print_memory(memory)
    hidden = Path(sys.argv[1]) / "hidden.csv"
    if hidden.exists():
        errors += print_hidden(hidden)
    outlines = Path(sys.argv[1]) / "outline.csv"
    if outlines.exists():
        errors += print_outlines(outlines)
    for error in errors:
        print(f"ERROR {error}")
    sys.exit(1 if errors else 0)


if __name__ == "__main__":
    main()
