#!/usr/bin/env python3
"""Compiles the examples in the comments of the public headers: check_examples.py COMPILER BUILD_INCLUDE_DIR

An example is comment text indented by three blanks with a line that ends a statement or opens a block. An example must
compile unchanged in a host that uses namespace ORL; the names that it assumes (a path, a buffer) are declared in
Surroundings.h.
"""
import re
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
ROOT = HERE.parent.parent
FOLDERS = ("API/Inc", "tvxcore/Inc", "tvxmediatypes/Inc", "CRV/Inc")
# A new user reads these first: each has an example of fewer than 20 lines.
STARTERS = ("ORLFoundation", "ORLInterface", "ORLFile", "ORLDirectory", "ORLTimecode", "ORLThreadedWorkQueue",
            "ORLAsyncFileReader", "ORLMemoryRecycler")
COMMENT = re.compile(r"^\s*(?:///|//)(.*)$")
STATEMENT = re.compile(r"[;{}]\s*(?://.*)?$")


def comments(lines):
    """Yields the runs of comment lines, each as a list of (line number, text without the slashes)."""
    run = []
    for number, line in enumerate(lines + [""], 1):
        match = COMMENT.match(line)
        if match:
            run.append((number, match[1]))
        elif run:
            yield run
            run = []


def examples(path):
    """Yields (line, code) of each example; a blank line inside a comment does not end the example."""
    for run in comments(path.read_text(encoding="utf-8").splitlines()):
        block = []
        for number, text in run + [(0, "end")]:
            if re.match(r"   \S", text) or (block and re.match(r"    ", text)) or (block and not text.strip()):
                block.append((number, text))
                continue
            if any(STATEMENT.search(line) for _, line in block):
                yield block[0][0], [line for _, line in block]
            block = []


def is_function(code):
    """Returns whether the example is the definition of a function."""
    return len(code) > 1 and code[0].endswith(")") and code[1].strip() == "{"


def program(found):
    """Returns one program with all examples, each as a member function of its own host or in its own namespace."""
    headers = sorted({path.relative_to(root).as_posix() for path, _, _ in found
                      for root in map(ROOT.joinpath, FOLDERS) if root in path.parents})
    text = "".join(f"#include <{header}>\n" for header in headers) + f'#include "{HERE}/Surroundings.h"\n'
    for number, (path, line, code) in enumerate(found):
        body = "\n".join("" if part.strip() == "..." else part for part in code)
        if is_function(code):
            text += f'namespace Example{number} {{\nusing namespace ORL;\n#line {line} "{path}"\n{body}\n}}\n'
        else:
            text += f"struct Host{number} : Host {{ void Example(); }};\nvoid Host{number}::Example()\n{{\n"
            text += f'using namespace ORL;\n#line {line} "{path}"\n{body}\n}}\n'
    return text


def main():
    compiler, generated = sys.argv[1:3]
    command = [compiler, "-std=c++17", "-fsyntax-only", "-w", f"-I{generated}"]
    command += [f"-I{ROOT / folder}" for folder in FOLDERS] + ["-x", "c++", "-"]
    found = [(path, line, code) for folder in FOLDERS for path in sorted((ROOT / folder).rglob("*.h"))
             for line, code in examples(path)]
    done = subprocess.run(command, input=program(found), text=True, capture_output=True)
    if done.returncode != 0:
        print(f"an example in a header does not compile:\n{done.stderr}")
    short = {path.stem for path, _, code in found if len(code) < 20}
    missing = [starter for starter in STARTERS if starter not in short]
    if missing:
        print(f"no example of fewer than 20 lines: {', '.join(missing)}")
    print(f"{len(found)} examples")
    return 1 if done.returncode != 0 or missing or len(found) < 12 else 0


if __name__ == "__main__":
    sys.exit(main())
