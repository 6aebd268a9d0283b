"""Places the clouds of a dome, written from the description of the method and not from the plug-in's code.

Prints tests/data/clouds/placement.txt:  python3 reference_placement.py > placement.txt
A case is a line "case NAME DENSITY OUTER_RADIUS SCALE TEMPLATES FIRST STEP"; template i has the radius
FIRST + (37 i mod TEMPLATES) STEP. Then "clouds COUNT LIMIT_REACHED" and, for some clouds of them,
"INDEX TEMPLATE X Z EXCLUSION_RADIUS ANGLE". Numbers are hexadecimal doubles, lengths are centimetres.
"""
import math
import struct


class Twister:
    """MT19937."""

    def __init__(self, seed):
        self.state = [seed]
        for i in range(1, 624):
            last = self.state[-1]
            self.state.append((1812433253 * (last ^ (last >> 30)) + i) & 0xFFFFFFFF)
        self.index = 624

    def word(self):
        if self.index == 624:
            for i in range(624):
                y = (self.state[i] & 0x80000000) | (self.state[(i + 1) % 624] & 0x7FFFFFFF)
                self.state[i] = self.state[(i + 397) % 624] ^ (y >> 1) ^ (0x9908B0DF if y & 1 else 0)
            self.index = 0
        y = self.state[self.index]
        self.index += 1
        y ^= y >> 11
        y ^= (y << 7) & 0x9D2C5680
        y ^= (y << 15) & 0xEFC60000
        return y ^ (y >> 18)

    def real(self):
        a, b = self.word() >> 5, self.word() >> 6
        return (a * 67108864 + b) * 2.0**-53


def words(number):
    return struct.unpack("<II", struct.pack("<d", number))


def best_gap(placed, x, z, radius, side):
    """The smallest gap to all images of all clouds; None when one is not above 0."""
    best = 1e50
    for _, px, pz, other in placed:
        for i in (-1, 0, 1):
            for j in (-1, 0, 1):
                dx, dz = (px + i * side) - x, (pz + j * side) - z
                gap = math.sqrt(dx * dx + 0.0 * 0.0 + dz * dz) - (radius + other)
                if gap <= 0:
                    return None
                best = min(best, gap)
    return best


def place(density, outer, scale, radii):
    side = 2 * outer
    low_density, high_density = words(density)
    low_outer, high_outer = words(outer)
    random = Twister(low_density ^ high_density ^ low_outer ^ high_outer ^ len(radii))
    placed, limit = [], False
    template = failures = 0
    while failures < len(radii):
        radius = radii[template] * scale / density
        winner = None
        for _ in range(50):
            x = side * random.real()
            z = side * random.real()
            gap = best_gap(placed, x, z, radius, side)
            if gap is not None and (winner is None or gap > winner[0]):
                winner = (gap, x, z)
        if winner:
            placed.append((template, winner[1], winner[2], radius))
            failures = 0
        else:
            failures += 1
        template = (template + 1) % len(radii)
        if len(placed) >= 250:
            limit = True
            break
    return [(t, x - outer, z - outer, r, random.real() * 6.283185307179586) for t, x, z, r in placed], limit


def main():
    cases = [  # name, density, outer radius, scale, templates, first radius, step; every nth cloud is printed
        ("plain", 1.0, 400000.0, 1.0, 3, 30000.0, 11000.0, 1),
        ("scaled", 1.0, 400000.0, 2.0, 3, 30000.0, 11000.0, 1),
        ("dense", 2.5, 400000.0, 1.0, 3, 30000.0, 11000.0, 5),
        ("huge", 1.0, 400000.0, 1.0, 1, 500000.0, 0.0, 1),
        ("points", 1.0, 123456.789, 1.0, 2, 0.0, 0.0, 25),
        ("thousand", 0.75, 400000.0, 0.5, 1000, 20000.0, 150.0, 10),
    ]
    for name, density, outer, scale, count, first, step, every in cases:
        radii = [first + (37 * i % count) * step for i in range(count)]
        clouds, limit = place(density, outer, scale, radii)
        print("case", name, *(v.hex() for v in (density, outer, scale)), count, first.hex(), step.hex())
        print("clouds", len(clouds), int(limit))
        for index, (template, *numbers) in enumerate(clouds):
            if index % every == 0 or index == len(clouds) - 1:
                print(index, template, *(v.hex() for v in numbers))


main()
