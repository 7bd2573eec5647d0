#!/usr/bin/env python3
"""Makes survey.csv: points of an invented terrain, as a surveyor would take them.

    python3 samples/terrain/make_survey.py >samples/terrain/survey.csv

A river bends through a valley of 1200 m by 800 m. Points lie dense along its banks and along a road, in regular
rows on a levelled field, and scattered on the slopes, the fewer the farther away. Columns: x, y and height in
metres. The same random seed gives the same file.
"""
import math
import random

WIDTH, HEIGHT = 1200, 800


def river(x):
    return 400 + 130 * math.sin(x / 190) + 45 * math.sin(x / 61)


def road(x):
    return 180 + 0.2 * x + 30 * math.sin(x / 250)


def height(x, y):
    off = abs(y - river(x))
    hill = 60 * math.exp(-(((x - 900) / 180) ** 2 + ((y - 640) / 120) ** 2))
    return 210 - 0.012 * x + 0.09 * off + hill + 3 * math.sin(x / 37) * math.sin(y / 29)


def points(rng):
    for step in range(0, 1200, 4):
        for side in (-14, -9, 9, 14):
            x = step + rng.uniform(-1, 1)
            yield x, river(x) + side + rng.uniform(-1, 1)
    for step in range(0, 1200, 10):
        for side in (-3.5, 3.5):
            yield step, road(step) + side
    for row in range(20):
        for column in range(24):
            yield 120 + 8 * column, 600 + 8 * row
    while True:
        x, y = rng.uniform(0, WIDTH), rng.uniform(0, HEIGHT)
        if rng.random() < 0.15 + 0.85 * math.exp(-abs(y - river(x)) / 120):
            yield x, y


def main():
    rng = random.Random(1911)
    print("x,y,height")
    made = 0
    for x, y in points(rng):
        in_field = 112 < x < 312 and 592 < y < 760 and (x % 8 or y % 8)
        if not (0 <= x <= WIDTH and 0 <= y <= HEIGHT) or in_field:
            continue
        print(f"{x:.2f},{y:.2f},{height(x, y):.2f}")
        made += 1
        if made == 4000:
            return


main()
