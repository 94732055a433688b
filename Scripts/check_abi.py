#!/usr/bin/env python3
"""Compares the ABI of the built libraries with the stored one: check_abi.py FOLDER [--renew]

FOLDER contains the libraries of the linux preset, with debug information. The stored ABI, in CMake/Exports/*.abi.xz,
contains the symbols and the types of the exported functions as abidw describes them. Removed symbols and changed types
are printed, with exit code 1; added symbols are allowed. With --renew, stores the ABI of the built libraries instead.
"""
import lzma
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
HEADERS = {"CRV": "CRV/Inc", "tvxmediatypes": "tvxmediatypes/Inc", "tvxcore": "tvxcore/Inc", "ORLFoundation": "API/Inc"}
DUMP_OPTIONS = ("--no-show-locs --no-corpus-path --no-comp-dir-path --no-parameter-names --exported-interfaces-only "
                "--drop-private-types").split()
# Bits of abidiff's exit code
FAILED = 1 | 2
CHANGED = 4 | 8


def dump(library, headers, result):
    subprocess.run(["abidw", *DUMP_OPTIONS, "--headers-dir", ROOT / headers, library, "--out-file", result], check=True)
    text = result.read_text().replace(f"{ROOT}/", "")
    if "<abi-instr" not in text:
        sys.exit(f"{library} has no debug information")
    result.write_text(text)


def compare(stored, now):
    done = subprocess.run(["abidiff", "--no-added-syms", stored, now], text=True, capture_output=True)
    if done.returncode & FAILED:
        sys.exit(f"abidiff failed:\n{done.stdout}{done.stderr}")
    return done.stdout if done.returncode & CHANGED else ""


def main():
    folder = Path(sys.argv[1])
    renew = sys.argv[2:] == ["--renew"]
    changed = 0
    with tempfile.TemporaryDirectory() as work:
        for name, headers in HEADERS.items():
            stored, now = Path(work) / f"{name}.stored.abi", Path(work) / f"{name}.abi"
            archive = ROOT / "CMake/Exports" / f"{name}.abi.xz"
            dump(folder / f"lib{name}.so", headers, now)
            if renew:
                archive.write_bytes(lzma.compress(now.read_bytes(), preset=9))
                continue
            stored.write_bytes(lzma.decompress(archive.read_bytes()))
            report = compare(stored, now)
            if report:
                print(f"The ABI of {name} has changed:\n{report}")
                changed += 1
    if changed:
        print("Docs/abi.md says which changes a release may contain, and how to renew the stored ABI.")
    return 1 if changed else 0


if __name__ == "__main__":
    sys.exit(main())
