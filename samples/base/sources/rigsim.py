#!/usr/bin/env python3
"""Simulates the vibration recorder of the test rig: rigsim.py TRIAL.ini RUN.csv

The bearing has a spalled outer race, so the acceleration shows the ball pass frequency of
the outer race and its harmonics above the imbalance of the shaft and some noise.
"""
import configparser
import math
import random
import sys


def outer_race_hz(trial, bearing):
    """How often a second a ball rolls over one point of the outer race."""
    ratio = bearing.getfloat("ball_diameter_mm") / bearing.getfloat("pitch_diameter_mm")
    angle = math.radians(bearing.getfloat("contact_angle_deg"))
    return bearing.getint("balls") / 2 * trial.getfloat("shaft_speed_hz") * (
        1 - ratio * math.cos(angle))


def main(source, target):
    config = configparser.ConfigParser()
    with open(source, encoding="utf-8") as file:
        config.read_file(file)
    shaft = config["trial"].getfloat("shaft_speed_hz")
    race = outer_race_hz(config["trial"], config["bearing"])
    rate = config["recorder"].getint("sample_rate_hz")
    noise = random.Random(config["recorder"].getint("seed"))
    tones = [(shaft, 0.42), (2 * shaft, 0.11), (race, 0.87), (2 * race, 0.46), (3 * race, 0.21)]

    with open(target, "w", encoding="utf-8", newline="\n") as file:
        file.write("time_s,acceleration_g\n")
        for i in range(config["recorder"].getint("samples")):
            time = i / rate
            value = sum(level * math.sin(2 * math.pi * hz * time) for hz, level in tones)
            file.write(f"{time:.4f},{value + noise.gauss(0, 0.09):.3f}\n")


if __name__ == "__main__":
    main(*sys.argv[1:3])
