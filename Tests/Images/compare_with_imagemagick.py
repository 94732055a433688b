#!/usr/bin/env python3
"""Compares the bitmaps that orl makes from a module's resources with those that ImageMagick reads from the same files.

compare_with_imagemagick.py ORL CONVERT MODULE DATA_FOLDER
"""
import re
import subprocess
import sys
import tempfile
from pathlib import Path

# Bitmaps with pixels that no run covers: ImageMagick uses the first colour of the table, Windows uses black.
DIFFERENT = {"runs_8"}


def colours(convert, path):
    done = subprocess.run([convert, str(path), "-alpha", "off", "-depth", "8", "rgb:-"], capture_output=True, check=True)
    return done.stdout


def main():
    orl, convert, module, folder = sys.argv[1:5]
    rows = re.findall(r'^(\d+) BITMAP "(\w+)\.bmp"$', (Path(folder) / "Bitmaps.rc").read_text(), re.MULTILINE)
    assert len(rows) == 15, rows
    faults = []
    with tempfile.TemporaryDirectory() as temporary:
        for number, name in rows:
            picture = Path(temporary) / f"{number}.png"
            subprocess.run([orl, "res", "picture", module, number, "-o", str(picture)], check=True)
            ours, theirs = colours(convert, picture), colours(convert, Path(folder) / f"{name}.bmp")
            assert len(ours) == 7 * 3 * 3, name
            if (ours == theirs) == (name in DIFFERENT):
                faults.append(name)
    for name in faults:
        print(f"{name}: ImageMagick reads other pixels" if name not in DIFFERENT
              else f"{name}: ImageMagick now reads the same pixels")
    sys.exit(1 if faults else 0)


main()
