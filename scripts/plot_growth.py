#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Draws how the cost of listings grows with the number of reels: plot_growth.py BENCH.json OUT.svg

The figures are those that `BENCH_JSON=BENCH.json make bench` writes. Both axes are logarithmic; a full line is the
library's operation, a dotted one the bare loop of the same host calls.
"""
import json
import math
import sys

WIDTH, HEIGHT = 720, 440
LEFT, RIGHT, TOP, BOTTOM = 70, 250, 20, 50
COLOURS = ["#1b6ca8", "#b2572b", "#3b7a3b", "#7a3b7a"]


def main():
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    with open(sys.argv[1], encoding="utf-8") as file:
        series = json.load(file)["series"]
    if not series:
        print(f"{sys.argv[1]}: no series (run the scenario \"listings\")", file=sys.stderr)
        return 2
    points = [point for one in series for point in one["points"]]
    x_low, x_high = (f(math.log10(p["reels"]) for p in points) for f in (min, max))
    times = [math.log10(p[key]) for p in points for key in ("ours_ms", "bare_ms")]
    y_low, y_high = math.floor(min(times)), math.ceil(max(times))

    def x(reels):
        return LEFT + (math.log10(reels) - x_low) / (x_high - x_low) * (WIDTH - LEFT - RIGHT)

    def y(milliseconds):
        return HEIGHT - BOTTOM - (math.log10(milliseconds) - y_low) / (y_high - y_low) * (HEIGHT - TOP - BOTTOM)

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{HEIGHT}" viewBox="0 0 {WIDTH} {HEIGHT}" '
           'role="img" aria-labelledby="t" font-family="sans-serif" font-size="12">',
           '  <title id="t">Time of listings over the number of reels</title>',
           f'  <rect width="{WIDTH}" height="{HEIGHT}" fill="#ffffff"/>']
    for exponent in range(math.ceil(x_low), math.floor(x_high) + 1):
        at = x(10 ** exponent)
        out.append(f'  <line x1="{at:.1f}" y1="{TOP}" x2="{at:.1f}" y2="{HEIGHT - BOTTOM}" stroke="#dddddd"/>')
        out.append(f'  <text x="{at:.1f}" y="{HEIGHT - BOTTOM + 18}" text-anchor="middle">{10 ** exponent:,}</text>')
    for exponent in range(y_low, y_high + 1):
        at = y(10 ** exponent)
        label = f"{10 ** exponent:g}"
        out.append(f'  <line x1="{LEFT}" y1="{at:.1f}" x2="{WIDTH - RIGHT}" y2="{at:.1f}" stroke="#dddddd"/>')
        out.append(f'  <text x="{LEFT - 6}" y="{at + 4:.1f}" text-anchor="end">{label}</text>')
    out.append(f'  <text x="{(LEFT + WIDTH - RIGHT) / 2}" y="{HEIGHT - 10}" text-anchor="middle">reels</text>')
    out.append(f'  <text x="16" y="{(TOP + HEIGHT - BOTTOM) / 2}" text-anchor="middle" '
               f'transform="rotate(-90 16 {(TOP + HEIGHT - BOTTOM) / 2})">milliseconds</text>')
    for i, one in enumerate(series):
        colour = COLOURS[i % len(COLOURS)]
        for key, dash in (("ours_ms", ""), ("bare_ms", ' stroke-dasharray="2 4"')):
            path = " ".join(f'{x(p["reels"]):.1f},{y(p[key]):.1f}' for p in one["points"])
            out.append(f'  <polyline points="{path}" fill="none" stroke="{colour}" stroke-width="2"{dash}/>')
        at = TOP + 20 + 22 * i
        out.append(f'  <line x1="{WIDTH - RIGHT + 15}" y1="{at - 4}" x2="{WIDTH - RIGHT + 45}" y2="{at - 4}" '
                   f'stroke="{colour}" stroke-width="2"/>')
        out.append(f'  <text x="{WIDTH - RIGHT + 52}" y="{at}">{one["what"]}</text>')
    at = TOP + 20 + 22 * len(series)
    out.append(f'  <line x1="{WIDTH - RIGHT + 15}" y1="{at - 4}" x2="{WIDTH - RIGHT + 45}" y2="{at - 4}" '
               'stroke="#555555" stroke-width="2" stroke-dasharray="2 4"/>')
    out.append(f'  <text x="{WIDTH - RIGHT + 52}" y="{at}">bare loop of the host calls</text>')
    out.append("</svg>")
    with open(sys.argv[2], "w", encoding="utf-8") as file:
        file.write("\n".join(out) + "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
