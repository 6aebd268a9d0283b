#!/usr/bin/env python3
"""Works a small cloud out from its description alone, number by number, and prints it as a table.

The table is kept as tests/data/clouds/reference_cloud.txt; run this script to make it anew. Each line begins with what
it holds; lengths are centimetres:

  shape     the 16 elements of the world matrix, opacity, density
  name      of the cloud, and the seed that follows from it
  settings  particle density, particle size, light direction, ground fade's start and end, self-shadow falloff
  bounds    of the shapes: centre, radius
  geometry  the sprites' bounds: relative centre, radius
  sprite    centre, random value, opacity, eight optical depths (single precision), 16 packed bytes
"""
import math
import struct
import zlib

# Every ellipsoid: its axes as the first three rows, its centre, opacity, density. One is mirrored, one has no size.
SHAPES = [
    ([(9600, 0, 7200), (0, 8000, 0), (-6000, 0, 8000)], (1000, 500, -2000), 0.9, 1.0),
    ([(15000, 0, 0), (0, 6000, 0), (0, 0, 11000)], (-9000, -1500, 3000), 0.6, 0.8),
    ([(-7000, 0, 0), (0, 9000, 0), (0, 0, 7000)], (8000, 2500, 5000), 0.75, 0.95),
    ([(12000, 0, 0), (0, 0, 7000), (0, -5000, 0)], (3000, -3000, 1500), 0.4, 0.7),
    ([(0, 0, 0), (0, 0, 0), (0, 0, 0)], (0, 4000, 0), 1.0, 1.0),
    ([(11000, 2000, 0), (0, 7000, 0), (0, 0, 13000)], (-4000, 1000, -5000), 1.0, 0.9),
]
NAME = "ParticleCloudShape1"
DENSITY, SIZE, LIGHT = 20000.0, 3000.0, (0.6, 0.64, 0.48)
FADE_START, FADE_END, FALLOFF = 2500.0, -4000.0, 0.5


def single(x):
    return struct.unpack("<f", struct.pack("<f", x))[0]


class Twister:
    """MT19937 of Matsumoto and Nishimura."""

    def __init__(self, seed):
        self.words = [seed]
        for i in range(1, 624):
            last = self.words[-1]
            self.words.append((1812433253 * (last ^ (last >> 30)) + i) & 0xFFFFFFFF)
        self.index = 624

    def uint32(self):
        if self.index == 624:
            w = self.words
            for i in range(624):
                y = (w[i] & 0x80000000) | (w[(i + 1) % 624] & 0x7FFFFFFF)
                w[i] = w[(i + 397) % 624] ^ (y >> 1) ^ (0x9908B0DF if y % 2 else 0)
            self.index = 0
        y = self.words[self.index]
        self.index += 1
        y ^= y >> 11
        y ^= (y << 7) & 0x9D2C5680
        y ^= (y << 15) & 0xEFC60000
        return y ^ (y >> 18)

    def unit(self):
        return single(float(self.uint32())) * 2.0**-32


def sub(a, b):
    return tuple(x - y for x, y in zip(a, b))


def dot(a, b):
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]


def world_matrix(shape):
    rows, centre = shape[0], shape[1]
    return [list(map(float, r)) + [0.0] for r in rows] + [list(map(float, centre)) + [1.0]]


def mapped(m, p):
    return tuple(p[0] * m[0][c] + p[1] * m[1][c] + p[2] * m[2][c] + m[3][c] for c in range(3))


def cofactor(m, row, column):
    r = [i for i in range(4) if i != row]
    c = [i for i in range(4) if i != column]
    e = lambda i, j: m[r[i]][c[j]]
    minor = (e(0, 0) * (e(1, 1) * e(2, 2) - e(1, 2) * e(2, 1)) - e(0, 1) * (e(1, 0) * e(2, 2) - e(1, 2) * e(2, 0))
             + e(0, 2) * (e(1, 0) * e(2, 1) - e(1, 1) * e(2, 0)))
    return minor * (-1.0 if (row + column) % 2 else 1.0)


def inverse(m):
    determinant = 0.0
    for c in range(4):
        determinant += m[0][c] * cofactor(m, 0, c)
    if not abs(determinant) > 1e-10:
        return [[1.0 if r == c else 0.0 for c in range(4)] for r in range(4)]
    return [[cofactor(m, c, r) / determinant for c in range(4)] for r in range(4)]


def sphere_through(border):
    """Centre and squared radius of the smallest sphere with all these points on its surface."""
    if not border:
        return (0.0, 0.0, 0.0), -1.0
    origin = border[0]
    edges = [sub(p, origin) for p in border[1:]]
    # The centre is origin + sum of x_i edge_i with 2 edge_j . (sum) = |edge_j|^2, solved by elimination.
    n = len(edges)
    rows = [[2.0 * dot(a, b) for b in edges] + [dot(a, a)] for a in edges]
    for i in range(n):
        pivot = max(range(i, n), key=lambda k: abs(rows[k][i]))
        rows[i], rows[pivot] = rows[pivot], rows[i]
        for k in range(n):
            if k != i:
                f = rows[k][i] / rows[i][i]
                rows[k] = [a - f * b for a, b in zip(rows[k], rows[i])]
    x = [rows[i][n] / rows[i][i] for i in range(n)]
    offset = tuple(sum(x[i] * edges[i][c] for i in range(n)) for c in range(3))
    return tuple(o + c for o, c in zip(offset, origin)), dot(offset, offset)


def smallest_sphere(points, border=()):
    """Welzl's algorithm: a point outside the sphere of those before it lies on the border of the next one."""
    centre, squared = sphere_through(border)
    if len(border) == 4:
        return centre, squared
    for i, p in enumerate(points):
        gap = sub(p, centre)
        if squared < 0.0 or dot(gap, gap) > squared * (1.0 + 1e-12):
            centre, squared = smallest_sphere(points[:i], border + (p,))
    return centre, squared


def shape_bounds(matrices):
    points = []
    for m in matrices:
        points += [mapped(m, (0.0, 1.0, 0.0)), mapped(m, (0.0, -1.0, 0.0))]
        for i in range(32):
            y = math.cos((i + 0.5) / 32 * math.pi)
            ring = math.sqrt(1.0 - y * y)
            for j in range(32):
                a = j / 32 * 2.0 * math.pi
                points.append(mapped(m, (ring * math.cos(a), y, ring * math.sin(a))))
    # Far points first: fewer spheres to grow.
    points.sort(key=lambda p: -dot(p, p))
    centre, squared = smallest_sphere(points)
    return centre, math.sqrt(squared) * 1.05


def evaluate(shapes, p, radius, fade_start, fade_end, shadow):
    if p[1] < fade_end:
        return None
    coverage = density = opacity = 0.0
    for m, shape_opacity, shape_density in shapes:
        q = mapped(m, p)
        if dot(q, q) <= radius * radius:
            w = min((1.0 - dot(q, q) / (radius * radius)) ** 2, 0.6 if shadow else 0.3)
            coverage += w
            density += shape_density * w
            opacity += shape_opacity * w
    if coverage < 1e-10:
        return None
    density /= coverage
    opacity /= coverage
    coverage = min(coverage, 1.0)
    if shadow:
        t = min(max((p[1] - fade_end) / (fade_start - fade_end), 0.0), 1.0)
        coverage *= t * t * (3.0 - 2.0 * t)
    return coverage, density, opacity


def march(shapes, p, centre, bound_radius, fade_start, fade_end):
    step = bound_radius / 10.0
    o = sub(p, centre)
    radius = 2.0 * bound_radius
    a, b, c = dot(LIGHT, LIGHT), 2.0 * dot(o, LIGHT), dot(o, o) - radius * radius
    discriminant = b * b - 4.0 * a * c
    if discriminant < 0.0:
        return 0.0
    t0, t1 = (-b - math.sqrt(discriminant)) / (2.0 * a), (-b + math.sqrt(discriminant)) / (2.0 * a)
    if t1 < 1e-10:
        return 0.0
    if t0 > 0.0:
        p = tuple(x + t0 * l for x, l in zip(p, LIGHT))
        t1 -= t0
    remaining, depth = t1, 0.0
    while remaining > 0.0:
        sample = evaluate(shapes, p, 1.8, fade_start, fade_end, True)
        if sample:
            depth += sample[0] * sample[1] * min(step, remaining) / 100.0
        p = tuple(x + step * l for x, l in zip(p, LIGHT))
        remaining -= step
    return depth


def sprites_of(shapes, centre, radius, seed):
    """Kept positions, opacities, random values."""
    random = Twister(seed)
    step = 1000.0 / DENSITY**0.3333333333333333 * 100.0
    extent = 2.0 * radius
    fade_end = FADE_END + centre[1]
    assert int(extent / step) ** 3 <= 1000000
    positions, opacities = [], []
    x = 0.0
    while x < extent:
        y = 0.0
        while y < extent:
            z = 0.0
            while z < extent:
                p = tuple(at + random.unit() * step for at in (x, y, z))
                z += step
                p = tuple(at - radius + c for at, c in zip(p, centre))
                out = sub(p, centre)
                if not dot(out, out) < radius * radius:
                    continue
                sample = evaluate(shapes, p, 1.2, 0.0, fade_end, False)
                if sample and 1.0 - sample[0] < random.unit() * sample[1]:
                    positions.append(p)
                    opacities.append(sample[2])
            y += step
        x += step
    assert len(positions) < 4000
    return positions, opacities, [random.unit() for _ in positions]


def packed(p, random, opacity, depths, to_bounds, radius):
    record = b""
    for c, offset in zip(p, to_bounds):
        record += struct.pack(">h", int((single(c) + offset) / radius * 32767.0))
    record += bytes([int(random * 256.0) & 0xFF, int(min(single(opacity) * 256.0, 255.0) + 0.5)])
    return record + bytes(int(math.exp(-FALLOFF / 100.0 * d) * 256.0) & 0xFF for d in depths)


def main():
    matrices = [world_matrix(s) for s in SHAPES]
    shapes = [(inverse(m), s[2], s[3]) for m, s in zip(matrices, SHAPES)]
    for m, s in zip(matrices, SHAPES):
        print("shape", *("%g" % e for row in m for e in row), s[2], s[3])
    seed = zlib.crc32(NAME.encode())
    print("name", NAME, seed)
    print("settings", DENSITY, SIZE, *LIGHT, FADE_START, FADE_END, FALLOFF)
    centre, radius = shape_bounds(matrices)
    print("bounds", *map(repr, centre), repr(radius))
    positions, opacities, randoms = sprites_of(shapes, centre, radius, seed)
    inner, squared = smallest_sphere(positions)
    geometry, half = sub(inner, centre), SIZE / 2.0
    geometry_radius = math.sqrt(squared) + math.sqrt(half * half + half * half)
    print("geometry", *map(repr, geometry), repr(geometry_radius))
    to_bounds = tuple(-(c + g) for c, g in zip(centre, geometry))
    for p, opacity, random in zip(positions, opacities, randoms):
        depths = []
        for i in range(8):
            corner = (1 if i & 1 else -1, 1 if i & 2 else -1, 1 if i & 4 else -1)
            at = tuple(x + c * SIZE * 0.5 * 0.5 for x, c in zip(p, corner))
            depths.append(single(march(shapes, at, centre, radius, FADE_START + centre[1], FADE_END + centre[1])))
        values = [*p, random, opacity, *depths]
        print("sprite", *("%.9g" % single(v) for v in values),
              packed(p, random, opacity, depths, to_bounds, geometry_radius).hex())


main()
