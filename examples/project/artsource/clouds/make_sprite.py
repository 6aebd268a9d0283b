#!/usr/bin/env python3
"""Writes cloud_sprite.tga: a billowy puff on a clear ground, 128 x 128 pixels, RGBA. Needs nothing but Python.

The game's copy is made from it with:  nvcompress -alpha -bc3 cloud_sprite.tga ../../build/clouds/cloud_sprite.dds
"""
import math
import random
import struct

SIZE = 128
random.seed(7)
LATTICE = [[random.random() for _ in range(64)] for _ in range(64)]


def smooth(t):
    return t * t * (3 - 2 * t)


def value(x, y):
    """Value noise, 0 to 1."""
    i, j = math.floor(x), math.floor(y)
    u, v = smooth(x - i), smooth(y - j)
    at = lambda a, b: LATTICE[b % 64][a % 64]
    low = at(i, j) * (1 - u) + at(i + 1, j) * u
    high = at(i, j + 1) * (1 - u) + at(i + 1, j + 1) * u
    return low * (1 - v) + high * v


def billows(x, y):
    """Five octaves of noise folded at its middle, which leaves round lumps; 0 to 1."""
    total, weight = 0.0, 0.0
    for octave in range(5):
        amplitude = 0.55**octave
        total += amplitude * (1 - abs(2 * value(x * 2**octave + 7 * octave, y * 2**octave + 3 * octave) - 1))
        weight += amplitude
    return total / weight


pixels = bytearray()
for row in range(SIZE):
    for column in range(SIZE):
        u, v = (column + 0.5) / SIZE * 2 - 1, (row + 0.5) / SIZE * 2 - 1
        lump = billows(column / 26, row / 26)
        edge = math.hypot(u, v) + 0.55 * (0.62 - lump)
        alpha = smooth(min(1.0, max(0.0, (0.95 - edge) / 0.75))) * min(1.0, max(0.0, (0.98 - math.hypot(u, v)) * 8))
        shade = 0.8 + 0.2 * lump
        grey = round(255 * shade)
        pixels += bytes((grey, grey, grey, round(255 * alpha)))

with open("cloud_sprite.tga", "wb") as file:
    file.write(struct.pack("<BBBHHBHHHHBB", 0, 0, 2, 0, 0, 0, 0, 0, SIZE, SIZE, 32, 8))
    file.write(pixels)
