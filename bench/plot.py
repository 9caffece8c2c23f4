#!/usr/bin/env python3
"""Draws benchmark times over an argument as an SVG for docs/performance.md.

usage: plot.py RESULTS.json BENCHMARK ARGUMENT-INDEX TITLE X-LABEL OUT.svg

RESULTS.json is what a benchmark program writes with --benchmark_out=RESULTS.json; of repetitions the fastest counts.
"""
import json
import math
import sys
from xml.sax.saxutils import escape

WIDTH, HEIGHT, LEFT, RIGHT, TOP, BOTTOM = 640, 360, 70, 20, 50, 50


def points(path, name, index):
    fastest = {}
    for run in json.load(open(path))["benchmarks"]:
        parts = run["name"].split("/")
        if parts[0] == name and run["run_type"] == "iteration":
            x = float(parts[1 + index])
            unit = run["time_unit"]
            fastest[x] = min(run["real_time"], fastest.get(x, math.inf))
    return sorted(fastest.items()), unit


def main():
    path, name, index, title, label, out = sys.argv[1:]
    data, unit = points(path, name, int(index))
    low, high = math.log2(data[0][0]), math.log2(data[-1][0])
    step = 10 ** math.floor(math.log10(max(y for _, y in data)))
    top = math.ceil(max(y for _, y in data) / step) * step

    def place(x, y):
        return (LEFT + (math.log2(x) - low) / (high - low) * (WIDTH - LEFT - RIGHT),
                HEIGHT - BOTTOM - y / top * (HEIGHT - TOP - BOTTOM))

    svg = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" font-family="Helvetica, Arial, '
           f'sans-serif" font-size="12"><title>{escape(title)}</title><rect width="{WIDTH}" height="{HEIGHT}" '
           f'fill="#fff"/><text x="{LEFT}" y="26" font-size="15" font-weight="bold">{escape(title)}</text>']
    for line in range(6):
        y = place(data[0][0], top * line / 5)[1]
        svg.append(f'<path d="M{LEFT} {y:.1f}H{WIDTH - RIGHT}" stroke="#ddd"/><text x="{LEFT - 8}" y="{y + 4:.1f}" '
                   f'text-anchor="end">{top * line / 5:g}</text>')
    for x, _ in data:
        px, py = place(x, 0)
        svg.append(f'<text x="{px:.1f}" y="{py + 18:.1f}" text-anchor="middle">{x:g}</text>')
    svg.append(f'<text x="{(LEFT + WIDTH - RIGHT) / 2}" y="{HEIGHT - 10}" text-anchor="middle">{escape(label)}</text>'
               f'<text x="14" y="{HEIGHT / 2}" transform="rotate(-90 14 {HEIGHT / 2})" text-anchor="middle">'
               f'{unit}</text>')
    svg.append('<path fill="none" stroke="#2a6" stroke-width="2" d="M' +
               "L".join("{:.1f} {:.1f}".format(*place(*point)) for point in data) + '"/>')
    svg += ['<circle cx="{:.1f}" cy="{:.1f}" r="3.5" fill="#2a6"/>'.format(*place(*point)) for point in data]
    open(out, "w").write("\n".join(svg) + "\n</svg>\n")


main()
