#!/usr/bin/env python3
"""Draws a spectrum as a line diagram: plot.py SPECTRUM.csv PLOT.svg"""
import csv
import sys

WIDTH, HEIGHT = 595, 340
LEFT, RIGHT, TOP, BOTTOM = 62, 575, 52, 284
MAX_HZ, MAX_G = 400, 1.0
MARKS = [(25, "shaft"), (90, "outer race"), (179, "2 x outer race"), (269, "3 x outer race")]
HEAD = f"""<?xml version="1.0" encoding="UTF-8"?>
<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}pt" height="{HEIGHT}pt"
     viewBox="0 0 {WIDTH} {HEIGHT}" font-family="Nimbus Sans" font-size="10">
<title>Vibration spectrum, trial 017</title>
<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>
"""


def x_of(hertz):
    return LEFT + (RIGHT - LEFT) * hertz / MAX_HZ


def y_of(level):
    return BOTTOM - (BOTTOM - TOP) * level / MAX_G


def text(x, y, words, anchor="middle", more=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}"{more}>{words}</text>\n'


def line(x1, y1, x2, y2, colour):
    return (f'<path d="M{x1:.1f} {y1:.1f}L{x2:.1f} {y2:.1f}" stroke="{colour}"'
            ' stroke-width="0.6" fill="none"/>\n')


def grid():
    out = ""
    for hertz in range(0, MAX_HZ + 1, 50):
        out += line(x_of(hertz), TOP, x_of(hertz), BOTTOM, "#d5dbe1")
        out += text(x_of(hertz), BOTTOM + 15, str(hertz))
    for tenths in range(0, 11, 2):
        out += line(LEFT, y_of(tenths / 10), RIGHT, y_of(tenths / 10), "#d5dbe1")
        out += text(LEFT - 7, y_of(tenths / 10) + 3.5, f"{tenths / 10:.1f}", "end")
    out += text((LEFT + RIGHT) / 2, BOTTOM + 36, "Frequency in Hz")
    middle = (TOP + BOTTOM) / 2
    out += text(20, middle, "Acceleration in g", more=f' transform="rotate(-90 20 {middle:.1f})"')
    return out


def curve(rows):
    points = " ".join(f"{x_of(hertz):.1f},{y_of(level):.1f}" for hertz, level in rows)
    return (f'<polyline points="{points}" fill="none" stroke="#17517e" stroke-width="1.1"'
            ' stroke-linejoin="round"/>\n')


def marks(levels):
    return "".join(text(x_of(hertz), y_of(levels[hertz]) - 6, words, more=' fill="#9a3412"')
                   for hertz, words in MARKS)


def main(source, target):
    with open(source, encoding="utf-8") as file:
        rows = [(int(row["frequency_hz"]), float(row["amplitude_g"]))
                for row in csv.DictReader(file)]
    rows = [row for row in rows if row[0] <= MAX_HZ]
    with open(target, "w", encoding="utf-8", newline="\n") as file:
        file.write(HEAD)
        file.write(text(LEFT, 30, "Vibration spectrum, trial 017, bearing 6205 after 612 h", "start",
                        ' font-size="14" font-weight="bold"'))
        file.write(grid() + curve(rows) + marks(dict(rows)) + "</svg>\n")


if __name__ == "__main__":
    main(*sys.argv[1:3])
