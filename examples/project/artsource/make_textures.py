#!/usr/bin/env python3
"""Makes the textures of the example scenes below ../build: run it in its own folder.

Needs Python, ImageMagick's convert, and nvcompress and nvassemble of the NVIDIA texture tools. Every picture is worked
out here from noise; nothing is read.
"""
import math
import os
import random
import struct
import subprocess
import tempfile

random.seed(7)
LATTICE = [[random.random() for _ in range(64)] for _ in range(64)]


def smooth(t):
    t = min(1.0, max(0.0, t))
    return t * t * (3 - 2 * t)


def mix(a, b, t):
    return tuple(p + (q - p) * t for p, q in zip(a, b))


def value(x, y):
    """Value noise, 0 to 1, repeating every 64 units."""
    i, j = math.floor(x), math.floor(y)
    u, v = smooth(x - i), smooth(y - j)
    low = LATTICE[j % 64][i % 64] * (1 - u) + LATTICE[j % 64][(i + 1) % 64] * u
    high = LATTICE[(j + 1) % 64][i % 64] * (1 - u) + LATTICE[(j + 1) % 64][(i + 1) % 64] * u
    return low * (1 - v) + high * v


def fractal(x, y, octaves, noise=value):
    """Octaves of noise, each turned against the last so that the lattice does not show; 0 to 1."""
    total = weight = 0.0
    amplitude = 1.0
    for _ in range(octaves):
        total += amplitude * noise(x, y)
        weight += amplitude
        amplitude *= 0.52
        x, y = 1.56 * x + 1.32 * y + 17.3, 1.56 * y - 1.32 * x + 5.1
    return total / weight


def billow(x, y):
    """Noise folded at its middle: round lumps."""
    return 1 - abs(2 * value(x, y) - 1)


def texels(width, height, pixel):
    """Rows from the top, four bytes a pixel: blue, green, red, alpha. pixel(column, row) answers red, green, blue, alpha
    from 0 to 1."""
    data = bytearray()
    for row in range(height):
        for column in range(width):
            red, green, blue, alpha = (round(255 * min(1.0, max(0.0, c))) for c in pixel(column, row))
            data += bytes((blue, green, red, alpha))
    return data


def write_tga(path, width, height, pixel):
    """A 32-bit TGA whose first row is the top one."""
    with open(path, "wb") as file:
        file.write(struct.pack("<BBBHHBHHHHBB", 0, 0, 2, 0, 0, 0, 0, 0, width, height, 32, 0x28))
        file.write(texels(width, height, pixel))


def write_dds(path, width, height, pixel):
    """An uncompressed 32-bit DDS without mipmaps."""
    size_pitch_and_format = 0x100F
    rgb_with_alpha = 0x41
    with open(path, "wb") as file:
        file.write(b"DDS ")
        file.write(struct.pack("<7I44x", 124, size_pitch_and_format, height, width, 4 * width, 0, 0))
        file.write(struct.pack("<8I", 32, rgb_with_alpha, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000))
        file.write(struct.pack("<5I", 0x1000, 0, 0, 0, 0))
        file.write(texels(width, height, pixel))


def cloud_sprite(column, row, size=128):
    """A billowy puff on a clear ground."""
    u, v = (column + 0.5) / size * 2 - 1, (row + 0.5) / size * 2 - 1
    lump = fractal(column / 26, row / 26, 5, billow)
    radius = math.hypot(u, v)
    alpha = smooth((0.95 - radius - 0.55 * (0.62 - lump)) / 0.75) * min(1.0, max(0.0, (0.98 - radius) * 8))
    shade = 0.8 + 0.2 * lump
    return shade, shade, shade, alpha


def wisps(column, row, size=256):
    """Cirrus: streaks drawn out along one direction, thinning out towards the edge of the picture."""
    u, v = (column + 0.5) / size * 2 - 1, (row + 0.5) / size * 2 - 1
    bend = 1.6 * fractal(1.7 * u + 3, 1.7 * v + 8, 3)
    streak = fractal(2.2 * u + 4.0 * v + bend + 9, 9 * (v - 0.5 * u) + 2.2 * bend, 6)
    patch = fractal(2.1 * u + 31, 2.1 * v + 12, 3)
    edge = smooth((1 - math.hypot(u, v)) / 0.45)
    return 1, 1, 1, 0.9 * edge * smooth((streak - 0.47) / 0.36) * smooth((patch - 0.4) / 0.25)


# Height above the horizon (sine) and colour; from the ground up, for four times of the day.
DAY = {
    "night": [(-1, (0.01, 0.01, 0.02)), (0, (0.07, 0.09, 0.16)), (0.3, (0.03, 0.05, 0.12)), (1, (0.01, 0.02, 0.06))],
    "dawn": [(-1, (0.2, 0.17, 0.2)), (0, (0.98, 0.72, 0.52)), (0.12, (0.86, 0.66, 0.66)), (0.4, (0.42, 0.5, 0.7)),
             (1, (0.16, 0.26, 0.5))],
    "noon": [(-1, (0.35, 0.4, 0.45)), (0, (0.8, 0.88, 0.94)), (0.15, (0.6, 0.76, 0.92)), (0.5, (0.27, 0.5, 0.8)),
             (1, (0.1, 0.27, 0.6))],
    "dusk": [(-1, (0.12, 0.08, 0.12)), (0, (0.98, 0.5, 0.22)), (0.1, (0.82, 0.38, 0.36)), (0.35, (0.38, 0.24, 0.46)),
             (1, (0.08, 0.09, 0.27))],
}


def gradient(column, row, width=64, height=256):
    """Times of the day from left to right, the zenith on top and the nadir below."""
    y = 1 - (row + 0.5) / height * 2

    def at(stops):
        for (y0, c0), (y1, c1) in zip(stops, stops[1:]):
            if y <= y1:
                return mix(c0, c1, (y - y0) / (y1 - y0))
        return stops[-1][1]

    times = [at(stops) for stops in DAY.values()]
    place = (column + 0.5) / width * len(times)
    first = min(int(place), len(times) - 1)
    return *mix(times[first], times[(first + 1) % len(times)], smooth((place - first - 0.5) * 2)), 1


def aurora(direction):
    """A clear night with an aurora in the north (-Z) and a glow on the horizon."""
    x, y, z = direction
    sky = mix((0.03, 0.05, 0.11), (0.008, 0.012, 0.04), smooth(y * 1.6))
    sky = mix(sky, (0.05, 0.09, 0.12), smooth(1 - abs(y) * 5) * 0.7)
    if y < 0:
        return mix(sky, (0.01, 0.012, 0.02), smooth(-y * 8))
    azimuth = math.atan2(x, -z)
    glow = (0.0, 0.0, 0.0)
    for base, height, phase, strength in ((0.2, 0.34, 0.0, 1.0), (0.34, 0.42, 3.1, 0.75)):
        fold = base + 0.09 * math.sin(2.3 * azimuth + phase) + 0.05 * math.sin(5.1 * azimuth + 2 * phase)
        rays = 0.45 + 0.55 * fractal(azimuth * 15 + phase, phase, 3)
        up = (y - fold) / height
        curtain = strength * smooth(up / 0.12) * math.exp(-3.1 * max(up, 0)) * rays * smooth((1.9 - abs(azimuth)) / 1.1)
        glow = tuple(g + curtain * c for g, c in zip(glow, mix((0.2, 0.95, 0.5), (0.45, 0.25, 0.75), smooth(up * 1.7))))
    star = 0.0
    u, v = azimuth * 60, math.asin(y) * 60
    if value(math.floor(u) * 7.31, math.floor(v) * 3.77) > 0.86:
        star = 0.8 * smooth(1 - 2.6 * math.hypot(u - math.floor(u) - 0.5, (v - math.floor(v) - 0.5)))
    star *= smooth(1 - 8 * sum(glow))
    return tuple(s + 0.85 * g + star for s, g in zip(sky, glow))


# What the column and row of each face of a cube map look at, from -1 to 1, rows downward.
FACES = {
    "+x": lambda u, v: (1, -v, -u), "-x": lambda u, v: (-1, -v, u),
    "+y": lambda u, v: (u, 1, v), "-y": lambda u, v: (u, -1, -v),
    "+z": lambda u, v: (u, -v, 1), "-z": lambda u, v: (-u, -v, -1),
}


def aurora_face(look, size):
    def pixel(column, row):
        d = look((column + 0.5) / size * 2 - 1, (row + 0.5) / size * 2 - 1)
        length = math.sqrt(sum(c * c for c in d))
        return *aurora(tuple(c / length for c in d)), 1

    return pixel


def run(*command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)


def main():
    build = os.path.abspath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "build"))
    for folder in ("clouds", "skies"):
        os.makedirs(os.path.join(build, folder), exist_ok=True)
    with tempfile.TemporaryDirectory() as work:
        def tga(name, width, height, pixel):
            path = os.path.join(work, name + ".tga")
            write_tga(path, width, height, pixel)
            return path

        # Not compressed: thousands of sprites lie over each other, and what 4 x 4 blocks do to a soft edge adds up.
        # Software OpenGL also decodes a compressed texture anew at every fetch, half of its work on a sky of clouds.
        write_dds(os.path.join(build, "clouds", "cloud_sprite.dds"), 128, 128, cloud_sprite)
        run("nvcompress", "-alpha", "-bc3", tga("wisps", 256, 256, wisps), os.path.join(build, "clouds", "wisps.dds"))
        run("convert", tga("gradient", 64, 256, gradient), os.path.join(build, "skies", "times_of_day.png"))
        faces = [tga("face%d" % i, 256, 256, aurora_face(look, 256)) for i, look in enumerate(FACES.values())]
        cube = os.path.join(work, "cube.dds")
        run("nvassemble", "-cube", *faces, "-o", cube)
        run("nvcompress", "-nomips", "-fast", "-bc1", cube, os.path.join(build, "skies", "aurora.dds"))


if __name__ == "__main__":
    main()
