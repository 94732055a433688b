#!/usr/bin/env python3
"""Checks that each public header compiles alone with all warnings:
check_headers.py COMPILER STANDARD BUILD_INCLUDE_DIR [--without-exceptions]

Prints the compiler's messages for each header that fails; exit code 1 if any does. With --without-exceptions, compiles
all headers together with -fno-exceptions, and a host whose inline calls can throw.
"""
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
FOLDERS = ("API/Inc", "tvxcore/Inc", "tvxmediatypes/Inc", "CRV/Inc")
WARNINGS = "-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror".split()

# A literal that is no constant, a string that allocates, and the arrow of a reference throw.
HOST = """
bool Use(const ORL::InterfaceRef<ORL::ThreadedWorkQueue>& inQueue, const ORL::ThreadedWorkQueue::Request& inRequest)
{
    using namespace tvxcore::literals;
    const bool isNull = "00000000-0000-0000-0000-000000000000"_guid == ORL::Guid();
    return isNull && tvxcore::utility::UTF16String(inQueue ? 7 : 9, u'x').size() == 7
           && inQueue->QueueRequest(inRequest) && ORL::QueueFunction(inQueue, [] { return 1; }).get() == 1;
}
"""


def compile_alone(command, header, host=""):
    # Includes the header twice, to detect a missing guard.
    source = f"#include <{header}>\n#include <{header}>\n{host}"
    done = subprocess.run(command + ["-x", "c++", "-fsyntax-only", "-"], input=source, text=True, capture_output=True)
    return done.returncode, header, done.stderr


def main():
    compiler, standard, generated = sys.argv[1:4]
    without_exceptions = sys.argv[4:] == ["--without-exceptions"]
    command = [compiler, f"-std={standard}", *WARNINGS]
    if without_exceptions:
        command.append("-fno-exceptions")
    command += [f"-I{ROOT / folder}" for folder in FOLDERS] + [f"-I{generated}"]
    headers = [path.relative_to(ROOT / folder).as_posix()
               for folder in FOLDERS for path in sorted((ROOT / folder).rglob("*.h"))]
    if without_exceptions:
        everything = "".join(f"#include <{header}>\n" for header in headers)
        results = [compile_alone(command, "ORLFoundation.h", everything + HOST)]
    else:
        with ThreadPoolExecutor(max_workers=2) as pool:
            results = list(pool.map(lambda header: compile_alone(command, header), headers))
    failed = [result for result in results if result[0] != 0]
    for _, header, text in failed:
        print(f"{header} does not compile alone with {compiler} -std={standard}:\n{text}")
    print(f"{len(results) - len(failed)} of {len(results)} compile")
    return 1 if failed or not headers else 0


if __name__ == "__main__":
    sys.exit(main())
