# SPDX-License-Identifier: MIT
"""Writes the figures of measure.py as a table between two marks of a page, and draws the CPU time of a
poll against the number of listeners."""

import math
import re

BEGIN, END = "<!-- figures: begin -->", "<!-- figures: end -->"


def write(figures, page, plot):
    before, _, rest = page.read_text(encoding="utf-8").partition(BEGIN)
    _, _, after = rest.partition(END)
    page.write_text(f"{before}{BEGIN}\n\n{table(figures)}\n\n{END}{after}", encoding="utf-8")
    plot.write_text(drawing(figures), encoding="utf-8")


def table(figures):
    rows = ["| Command | Figure | Program | Floor | Ratio |", "|---|---|--:|--:|--:|"]
    rows += [f"| `scripts/bench {subject}` | {what} | {program:.3g} {unit} | {floor:.3g} {unit} "
             f"| {program / floor:.2f} |" for subject, what, program, floor, unit in figures]
    return "\n".join(rows)


def drawing(figures):
    """Returns the plot as SVG. Both axes are logarithmic, so that times in proportion to the number of
    listeners lie on a straight line."""
    lines = {"program": [], "floor": []}
    for subject, what, program, floor, _ in figures:
        match = re.fullmatch(r"(\d+) listeners?", what)
        if match and subject == "poll":
            lines["program"].append((int(match[1]), program))
            lines["floor"].append((int(match[1]), floor))
    costs = [cost for line in lines.values() for _, cost in line]
    left, right, top, bottom = 60, 600, 30, 300
    low, high = math.floor(math.log10(min(costs))), math.ceil(math.log10(max(costs)))
    widest = math.log10(max(count for count, _ in lines["program"]))

    def place(count, cost):
        return (left + (right - left) * math.log10(count) / widest,
                bottom - (bottom - top) * (math.log10(cost) - low) / (high - low))

    out = ['<svg xmlns="http://www.w3.org/2000/svg" width="700" height="350" '
           'font-family="sans-serif" font-size="12">',
           "<!-- SPDX-License-Identifier: MIT -->",
           "<title>CPU time of a poll against the number of listeners</title>",
           '<rect width="700" height="350" fill="white"/>',
           f'<text x="{left}" y="18">CPU time of a poll, in ms</text>',
           f'<text x="{(left + right) / 2}" y="{bottom + 40}" text-anchor="middle">listeners</text>']
    for power in range(low, high + 1):
        y = place(1, 10 ** power)[1]
        out.append(f'<path d="M{left} {y:.1f}H{right}" stroke="#ddd"/>')
        out.append(f'<text x="{left - 8}" y="{y + 4:.1f}" text-anchor="end">{10 ** power:g}</text>')
    for count, _ in lines["program"]:
        x = place(count, 1)[0]
        out.append(f'<text x="{x:.1f}" y="{bottom + 20}" text-anchor="middle">{count}</text>')
    for (name, line), colour, below in zip(lines.items(), ("#d1495b", "#30638e"), (-4, 12)):
        points = [place(*point) for point in line]
        way = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        out.append(f'<polyline points="{way}" fill="none" stroke="{colour}" stroke-width="2"/>')
        out += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="3" fill="{colour}"/>' for x, y in points]
        x, y = points[-1]
        out.append(f'<text x="{x + 8:.1f}" y="{y + below:.1f}" fill="{colour}">{name}</text>')
    return "\n".join([*out, "</svg>", ""])
