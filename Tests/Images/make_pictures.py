#!/usr/bin/env python3
"""Writes Tests/Images/Data: bitmaps in every form, a few PNG files, and Pixels.h with the pixels that each of them has.

The pixels are those that this script writes into each file, not those that a reader finds in it.
"""
import struct
import zlib
from pathlib import Path

HERE = Path(__file__).parent
DATA = HERE / "Data"
WIDTH, HEIGHT = 7, 3

bitmaps = []  # (number, name, bytes without the file header, rows of 0xAARRGGBB)


def opaque(red, green, blue):
    return 0xFF000000 | red << 16 | green << 8 | blue


def padded(row):
    return row + bytes(-len(row) % 4)


def packed(numbers, bits):
    value, out = 0, b""
    text = "".join(format(number, f"0{bits}b") for number in numbers)
    text += "0" * (-len(text) % 8)
    for place in range(0, len(text), 8):
        out += bytes([int(text[place:place + 8], 2)])
    return out


def info(bits, height=HEIGHT, compression=0, size=0, used=0, width=WIDTH):
    return struct.pack("<IiiHHIIiiII", 40, width, height, 1, bits, compression, size, 0, 0, used, 0)


def add(name, header, rows_of_bytes, pixels, top_down=False):
    rows = rows_of_bytes if top_down else rows_of_bytes[::-1]
    bitmaps.append((len(bitmaps) + 1, name, header + b"".join(padded(row) for row in rows), pixels))


def table(colours, entry=4):
    return b"".join(struct.pack("BBB", colour & 255, colour >> 8 & 255, colour >> 16 & 255) + bytes(entry - 3)
                    for colour in colours)


def numbered(bits, name, used=None, header=None, entry=4, top_down=False):
    count = used or 1 << bits
    colours = [opaque(i * 37 % 256, 255 - i * 11 % 256, i * 101 % 256) for i in range(count)]
    numbers = [[(x + 2 * y * y + x * y) % count for x in range(WIDTH)] for y in range(HEIGHT)]
    head = header or info(bits, used=used or 0, height=-HEIGHT if top_down else HEIGHT)
    add(name, head + table(colours, entry), [packed(row, bits) for row in numbers],
        [[colours[n] for n in row] for row in numbers], top_down)


def widened(value, bits):
    return value << (8 - bits) | value >> (2 * bits - 8)


def short(name, widths, masks, header):
    red, green, blue = widths
    raw, pixels = [], []
    for y in range(HEIGHT):
        values = [((5 * x + y) % (1 << red), (9 * y + x * x) % (1 << green), (3 * x * y + 1) % (1 << blue))
                  for x in range(WIDTH)]
        raw.append(b"".join(struct.pack("<H", r << green + blue | g << blue | b) for r, g, b in values))
        pixels.append([opaque(widened(r, red), widened(g, green), widened(b, blue)) for r, g, b in values])
    add(name, header, raw, pixels)


def colour(x, y):
    return (36 * x) % 256, (80 * y + 9 * x) % 256, (255 - 30 * x - y) % 256


def make_bitmaps():
    numbered(1, "bits_1")
    numbered(4, "bits_4")
    numbered(8, "bits_8")
    numbered(8, "bits_8_of_20_colours", used=20)
    numbered(4, "bits_4_top_down", top_down=True)
    numbered(8, "older_header", header=struct.pack("<IHHHH", 12, WIDTH, HEIGHT, 1, 8), entry=3)
    short("bits_16", (5, 5, 5), None, info(16))
    short("fields_565", (5, 6, 5), None, info(16, compression=3) + struct.pack("<III", 0xF800, 0x07E0, 0x001F))
    colours = [[colour(x, y) for x in range(WIDTH)] for y in range(HEIGHT)]
    pixels = [[opaque(*c) for c in row] for row in colours]
    blue_first = [b"".join(bytes(c[::-1]) for c in row) for row in colours]
    add("bits_24", info(24), blue_first, pixels)
    add("bits_24_top_down", info(24, height=-HEIGHT), blue_first, pixels, top_down=True)
    add("bits_32", info(32), [b"".join(bytes(c[::-1]) + b"\0" for c in row) for row in colours], pixels)
    add("fields_rgbx", info(32, compression=3) + struct.pack("<III", 0x000000FF, 0x0000FF00, 0x00FF0000),
        [b"".join(bytes(c) + b"\0" for c in row) for row in colours], pixels)
    longer = info(32, compression=3)[4:] + struct.pack("<IIII", 0xFF000000, 0x00FF0000, 0x0000FF00, 0)
    longer = struct.pack("<I", 108) + longer + struct.pack("<I", 0x73524742) + bytes(36 + 12)
    add("longer_header", longer, [b"".join(b"\0" + bytes(c[::-1]) for c in row) for row in colours], pixels)
    make_runs()


def make_runs():
    colours = [opaque(i * 16, 255 - i * 16, i * 7) for i in range(16)]
    black = opaque(0, 0, 0)
    # The rows, bottom row first: runs; literal pixels with padding; a move, literal pixels and the end.
    data = (bytes([4, 3, 3, 9, 0, 0]) + bytes([0, 5, 1, 2, 3, 4, 5, 0, 2, 15, 0, 0])
            + bytes([1, 8, 0, 2, 3, 0, 0, 3, 6, 7, 8, 0, 0, 1]))
    rows = [[8, None, None, None, 6, 7, 8], [1, 2, 3, 4, 5, 15, 15], [3, 3, 3, 3, 9, 9, 9]]
    add("runs_8", info(8, compression=1, size=len(data), used=16) + table(colours) + data, [],
        [[black if n is None else colours[n] for n in row] for row in rows])
    data = bytes([4, 0x35, 3, 0x99, 0, 0]) + bytes([0, 5, 0x12, 0x34, 0x50, 0, 2, 0xFF, 0, 0]) + bytes([7, 0x8A, 0, 1])
    rows = [[8, 10, 8, 10, 8, 10, 8], [1, 2, 3, 4, 5, 15, 15], [3, 5, 3, 5, 9, 9, 9]]
    add("runs_4", info(4, compression=2, size=len(data)) + table(colours) + data, [],
        [[colours[n] for n in row] for row in rows])


def chunk(name, contents):
    return struct.pack(">I", len(contents)) + name + contents + struct.pack(">I", zlib.crc32(name + contents))


def png(pixels):
    rows = b"".join(b"\0" + b"".join(struct.pack("BBBB", p >> 16 & 255, p >> 8 & 255, p & 255, p >> 24) for p in row)
                    for row in pixels)
    header = struct.pack(">IIBBBBB", len(pixels[0]), len(pixels), 8, 6, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 9))
            + chunk(b"IEND", b""))


PNGS = {
    "two_rows": [[0x80FF0000, 0x00123456, 0xFF0A141E], [0xFF00FF00, 0x7F808080, 0x01FFFFFF]],
    "english": [[0xFF000001]],
    "german": [[0xFF000002]],
    "neutral": [[0xFF000003]],
}


def text_of(pixels):
    return ", ".join(f"0x{pixel:08X}" for row in pixels for pixel in row)


def main():
    DATA.mkdir(exist_ok=True)
    make_bitmaps()
    lines = ["// Generated by make_pictures.py: the pixels of the bitmaps beside it, top row first.", "#pragma once", "",
             "#include <cstdint>", "", "struct BitmapRow", "{", "    short mID;", "    const char* mName;",
             "    std::uint32_t mPixels[21];", "};", "", f"inline constexpr int kBitmapWidth = {WIDTH};",
             f"inline constexpr int kBitmapHeight = {HEIGHT};", "", "inline constexpr BitmapRow kBitmaps[] = {"]
    script = ["// Generated by make_pictures.py.", "LANGUAGE 9, 1"]
    for number, name, contents, pixels in bitmaps:
        (DATA / f"{name}.bmp").write_bytes(b"BM" + struct.pack("<IHHI", 14 + len(contents), 0, 0, 14 + start_of(contents))
                                           + contents)
        values = text_of(pixels).split(", ")
        lines.append(f'    {{{number}, "{name}",')
        for place in range(0, len(values), 7):
            end = "}}," if place + 7 >= len(values) else ","
            lines.append("     " + ("{" if place == 0 else " ") + ", ".join(values[place:place + 7]) + end)
        script.append(f'{number} BITMAP "{name}.bmp"')
    lines.append("};")
    (DATA / "Pixels.h").write_text("\n".join(lines) + "\n")
    (DATA / "Bitmaps.rc").write_text("\n".join(script) + "\n")
    (DATA / "broken.png").write_bytes(png([[0xFFFFFFFF]])[:-20])
    (DATA / "broken.bmp").write_bytes(b"BM" + bytes(12) + info(24, width=100000, height=100000))
    for name, pixels in PNGS.items():
        (DATA / f"{name}.png").write_bytes(png(pixels))


def start_of(contents):
    """Returns the offset of the pixels after the file header."""
    size, = struct.unpack_from("<I", contents)
    if size == 12:
        return 12 + 3 * 256
    bits, compression = struct.unpack_from("<HI", contents, 14)
    used, = struct.unpack_from("<I", contents, 32)
    masks = 12 if compression == 3 and size == 40 else 0
    return size + masks + 4 * (used or (1 << bits if bits <= 8 else 0))


main()
