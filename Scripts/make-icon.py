#!/usr/bin/env python3
"""Writes Res/ORLFoundation.ico: a strip of film frames on a timeline, in three sizes.

Paints each size four times as large and averages the pixels, so that edges are smooth.
"""
import struct
from pathlib import Path

TARGET = Path(__file__).parent.parent / "Res" / "ORLFoundation.ico"
SCALE = 4

GROUND = (38, 50, 72, 255)
FRAMES = ((242, 178, 51, 255), (86, 180, 211, 255), (226, 106, 82, 255))
MARK = (245, 245, 245, 255)
NOTHING = (0, 0, 0, 0)


def inside_rounded(x, y, left, top, right, bottom, radius):
    if not (left <= x < right and top <= y < bottom):
        return False
    cx = min(max(x, left + radius), right - radius)
    cy = min(max(y, top + radius), bottom - radius)
    return (x - cx) ** 2 + (y - cy) ** 2 <= radius ** 2


def colour_at(x, y):
    """Returns the colour at a point in the unit square."""
    if not inside_rounded(x, y, 0.02, 0.02, 0.98, 0.98, 0.18):
        return NOTHING
    for number, colour in enumerate(FRAMES):
        left = 0.12 + number * 0.27
        if inside_rounded(x, y, left, 0.22, left + 0.22, 0.58, 0.04):
            return colour
    if abs(y - 0.75) < 0.035 and 0.12 <= x < 0.88:
        return MARK
    return MARK if abs(x - 0.5) < 0.03 and 0.64 <= y < 0.86 else GROUND


def pixel(x, y, side):
    points = [colour_at((x + (i + 0.5) / SCALE) / side, (y + (j + 0.5) / SCALE) / side)
              for i in range(SCALE) for j in range(SCALE)]
    alpha = sum(point[3] for point in points)
    if alpha == 0:
        return bytes(4)
    red, green, blue = (sum(p[c] * p[3] for p in points) // alpha for c in range(3))
    return bytes((blue, green, red, alpha // len(points)))


def image(side):
    rows = [b"".join(pixel(x, y, side) for x in range(side)) for y in reversed(range(side))]
    mask_row = bytes((side + 31) // 32 * 4)
    header = struct.pack("<IiiHHIIiiII", 40, side, 2 * side, 1, 32, 0, 0, 0, 0, 0, 0)
    return header + b"".join(rows) + mask_row * side


def main():
    images = [(side, image(side)) for side in (16, 32, 48)]
    contents = struct.pack("<HHH", 0, 1, len(images))
    place = len(contents) + 16 * len(images)
    for side, data in images:
        contents += struct.pack("<BBBBHHII", side, side, 0, 0, 1, 32, len(data), place)
        place += len(data)
    TARGET.write_bytes(contents + b"".join(data for _, data in images))


main()
