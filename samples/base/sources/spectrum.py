#!/usr/bin/env python3
"""Computes the amplitude spectrum of a run and its largest lines.

spectrum.py RUN.csv SPECTRUM.csv FINDINGS.csv
"""
import cmath
import csv
import math
import sys

LARGEST = 5


def read_run(path):
    with open(path, encoding="utf-8") as file:
        rows = list(csv.DictReader(file))
    return len(rows) / (float(rows[-1]["time_s"]) * len(rows) / (len(rows) - 1)), [
        float(row["acceleration_g"]) for row in rows]


def amplitudes(values):
    """Amplitude per line of a spectrum with a Hann window; the window halves the mean."""
    count = len(values)
    windowed = [value * (1 - math.cos(2 * math.pi * i / count)) for i, value in enumerate(values)]
    turn = [cmath.exp(-2j * math.pi * i / count) for i in range(count)]
    return [abs(sum(value * turn[i * line % count] for i, value in enumerate(windowed)))
            * 2 / count for line in range(count // 2)]


def largest_lines(levels):
    """The local maxima with the highest levels, highest first."""
    peaks = [line for line in range(1, len(levels) - 1)
             if levels[line - 1] < levels[line] >= levels[line + 1]]
    return sorted(peaks, key=lambda line: -levels[line])[:LARGEST]


def main(source, spectrum, findings):
    rate, values = read_run(source)
    levels = amplitudes(values)
    width = rate / len(values)
    with open(spectrum, "w", encoding="utf-8", newline="\n") as file:
        file.write("frequency_hz,amplitude_g\n")
        for line, level in enumerate(levels):
            file.write(f"{line * width:.0f},{level:.3f}\n")
    with open(findings, "w", encoding="utf-8", newline="\n") as file:
        file.write("frequency_hz,amplitude_g\n")
        for line in largest_lines(levels):
            file.write(f"{line * width:.0f},{levels[line]:.2f}\n")


if __name__ == "__main__":
    main(*sys.argv[1:4])
