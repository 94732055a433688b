#!/usr/bin/env python3
"""Builds the colour sources with each compiler at several levels and compares the digests of their sweeps.

color_digests.py ROOT COMPILER...
Some compilers fuse multiplications and additions by default, which changes results. The last level is for a processor
with fused operations, and tests that -ffp-contract=off, which the library uses, prevents this.
"""
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

LEVELS = (["-O0"], ["-O2"], ["-O3"], ["-O3", "-march=x86-64-v3"])
OPTIONS = ["-std=c++17", "-ffp-contract=off"]
STEP = "29"  # every 29th value: seconds, not minutes, without optimisation


def fused_operations_run_here():
    return " fma " in Path("/proc/cpuinfo").read_text(encoding="ascii", errors="replace")


def digests(root, compiler, level, folder):
    program = Path(folder) / ("digests_" + compiler + "".join(level))
    sources = [root / "Tests/Media/color_digests.cpp", *sorted((root / "Src/Media").glob("Color*.cpp"))]
    subprocess.run([compiler, *OPTIONS, *level, f"-I{root}/API/Inc", f"-I{root}/Inc", *map(str, sources),
                    "-o", str(program)], check=True)
    return subprocess.run([str(program), STEP], check=True, capture_output=True, text=True).stdout


def main():
    root = Path(sys.argv[1])
    levels = [level for level in LEVELS if len(level) == 1 or fused_operations_run_here()]
    builds = [(compiler, level) for compiler in sys.argv[2:] for level in levels]
    with tempfile.TemporaryDirectory() as folder, ThreadPoolExecutor(max_workers=2) as pool:
        results = list(pool.map(lambda build: digests(root, *build, folder), builds))
    failed = False
    for (compiler, level), result in zip(builds, results):
        if result.count("\n") < 20 or result != results[0]:
            failed = True
            print(f"{compiler} {' '.join(level)} differs from {builds[0][0]} {' '.join(builds[0][1])}:\n{result}")
    print(f"{len(builds)} builds, {results[0].count(chr(10))} sweeps each")
    return 1 if failed or len(builds) < 2 else 0


if __name__ == "__main__":
    sys.exit(main())
