#!/usr/bin/env python3
"""Checks that misuse does not compile: check_misuse.py COMPILER BUILD_INCLUDE_DIR

Each source beside this script must compile unchanged. With ORL_MISUSE defined as any number that the source tests for,
it must not compile, and the compiler's message must contain the text after "Expected:" in the source.
"""
import re
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
FOLDERS = ("API/Inc", "tvxcore/Inc", "tvxmediatypes/Inc", "CRV/Inc")


def main():
    compiler, generated = sys.argv[1:3]
    command = [compiler, "-std=c++17", "-fsyntax-only", "-Wall", "-Wextra", "-Werror", f"-I{generated}"]
    command += [f"-I{ROOT / folder}" for folder in FOLDERS]
    failures = 0
    count = 0
    for source in sorted(HERE.glob("*.cpp")):
        text = source.read_text(encoding="utf-8")
        expected = re.search(r"^// Expected: (.*)$", text, re.MULTILINE)[1]
        for number in [0] + sorted({int(number) for number in re.findall(r"ORL_MISUSE\s*[!=]=\s*(\d+)", text)}):
            count += 1
            done = subprocess.run(command + [f"-DORL_MISUSE={number}", source], text=True, capture_output=True)
            is_right = done.returncode == 0 if number == 0 else done.returncode != 0 and expected in done.stderr
            if not is_right:
                failures += 1
                print(f"{source.name} with ORL_MISUSE={number}: exit code {done.returncode}\n{done.stderr}")
    print(f"{count - failures} of {count} as expected")
    return 1 if failures or count < 2 else 0


if __name__ == "__main__":
    sys.exit(main())
