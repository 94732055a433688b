#!/usr/bin/env python3
"""Paints the pictures of the two plug-ins: Examples/Gallery/Pictures/*.png and bars.bmp.

A painter returns the colour at a point in the unit square as red, green, blue and alpha from 0 to 1. Each pixel is the
mean of nine points.
"""
import colorsys
import math
import struct
import zlib
from pathlib import Path

FOLDER = Path(__file__).parent / "Pictures"
SIDE = 96
POINTS = 3
NOTHING = (0.0, 0.0, 0.0, 0.0)


def star(x, y):
    dx, dy = x - 0.5, y - 0.52
    angle = math.atan2(dx, -dy)
    reach = 0.44 * (0.66 + 0.34 * math.cos(5 * angle))
    distance = math.hypot(dx, dy)
    if distance < reach:
        light = 1 - distance / 0.9
        return (0.98 * light + 0.02, 0.76 * light, 0.20 * light, 1.0)
    shadow = max(0.0, 1 - (distance - reach) / 0.08)
    return (0.1, 0.05, 0.0, 0.45 * shadow)


def ball(x, y):
    distance = math.hypot(x - 0.5, y - 0.47)
    if distance < 0.38:
        light = max(0.0, 1 - math.hypot(x - 0.38, y - 0.33) / 0.62)
        return (0.15 + 0.75 * light * light, 0.30 + 0.65 * light, 0.45 + 0.55 * light, 1.0)
    shadow = max(0.0, 1 - math.hypot((x - 0.5) / 0.42, (y - 0.90) / 0.07))
    return (0.0, 0.0, 0.0, 0.6 * shadow)


def wheel(x, y):
    dx, dy = x - 0.5, y - 0.5
    distance = math.hypot(dx, dy) / 0.45
    if distance > 1:
        return NOTHING
    red, green, blue = colorsys.hsv_to_rgb(math.atan2(dy, dx) / (2 * math.pi) % 1, distance, 1)
    return (red, green, blue, 1.0)


def rings(x, y):
    distance = math.hypot(x - 0.5, y - 0.5)
    wave = 0.5 + 0.5 * math.cos(distance * 46)
    return (0.85, 0.25 + distance, 0.45, wave * max(0.0, 1 - distance / 0.5))


def sine(x, y):
    height = 0.5 - 0.32 * math.sin(x * 4 * math.pi) * math.sin(x * math.pi)
    glow = math.exp(-abs(y - height) * 26)
    return (0.35, 0.95, 0.75, min(1.0, glow * 1.2))


def levels(x, y):
    column = int(x * 8)
    height = (0.35, 0.62, 0.86, 0.74, 0.93, 0.55, 0.7, 0.4)[column]
    row = int((1 - y) * 16)
    inside = 0.12 < x * 8 % 1 < 0.88 and 0.15 < y * 16 % 1 < 0.85
    if not inside:
        return NOTHING
    colour = (0.25, 0.85, 0.4) if row < 10 else (0.95, 0.8, 0.2) if row < 13 else (0.95, 0.3, 0.25)
    return (*colour, 1.0 if row < height * 16 else 0.14)


def sunset(x, y):
    sun = math.hypot(x - 0.5, y - 0.56)
    if y > 0.66:
        glint = max(0.0, 1 - abs(x - 0.5) / (0.05 + (y - 0.66))) * (0.5 + 0.5 * math.sin(y * 90))
        return (0.12 + 0.8 * glint, 0.10 + 0.4 * glint, 0.28 + 0.1 * glint, 1.0)
    if sun < 0.17:
        return (1.0, 0.85, 0.45, 1.0)
    glow = math.exp(-sun * 3)
    return (0.25 + 0.75 * glow, 0.12 + 0.45 * glow, 0.38 - 0.1 * glow, 1.0)


def pixel(painter, x, y):
    points = [painter((x + (i + 0.5) / POINTS) / SIDE, (y + (j + 0.5) / POINTS) / SIDE)
              for i in range(POINTS) for j in range(POINTS)]
    alpha = sum(point[3] for point in points)
    if alpha == 0:
        return bytes(4)
    colour = [sum(p[c] * p[3] for p in points) / alpha for c in range(3)]
    return bytes(min(255, max(0, round(255 * value))) for value in (*colour, alpha / len(points)))


def chunk(name, contents):
    return struct.pack(">I", len(contents)) + name + contents + struct.pack(">I", zlib.crc32(name + contents))


def write_png(name, painter):
    rows = b"".join(b"\0" + b"".join(pixel(painter, x, y) for x in range(SIDE)) for y in range(SIDE))
    header = struct.pack(">IIBBBBB", SIDE, SIDE, 8, 6, 0, 0, 0)
    (FOLDER / f"{name}.png").write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
                                         + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def write_bars():
    """Returns a bitmap of seven bars, with a grey strip below, as run-length encoded 8-bit pixels."""
    bars = [(191, 191, 191), (191, 191, 0), (0, 191, 191), (0, 191, 0), (191, 0, 191), (191, 0, 0), (0, 0, 191)]
    greys = [(i * 36, i * 36, i * 36) for i in range(7)]
    colours = b"".join(bytes((blue, green, red, 0)) for red, green, blue in bars + greys)
    widths = [14] * 6 + [12]
    runs = b""
    for y in range(SIDE):  # rows are stored from the bottom
        first = 7 if y < SIDE // 4 else 0
        runs += b"".join(bytes((width, first + i)) for i, width in enumerate(widths)) + b"\0\0"
    runs += b"\0\1"
    info = struct.pack("<IiiHHIIiiII", 40, SIDE, SIDE, 1, 8, 1, len(runs), 0, 0, 14, 14)
    start = 14 + len(info) + len(colours)
    (FOLDER / "bars.bmp").write_bytes(b"BM" + struct.pack("<IHHI", start + len(runs), 0, 0, start) + info + colours + runs)


def main():
    FOLDER.mkdir(exist_ok=True)
    for painter in (star, ball, wheel, rings, sine, levels, sunset):
        write_png(painter.__name__, painter)
    write_bars()


main()
