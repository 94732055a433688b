#!/usr/bin/env python3
"""Compiles and runs the code blocks of the documents: check_documents.py COMPILER BUILD

Each block of README.md and Docs is cut from its document and has one of these fates:

    cpp      with a main function: built as a host with the cmake block above it, against an installation, and run;
             without one: compiled as the body of a function of a host (Surroundings.h declares what it assumes)
    cmake    configured and built in a project with the sources that the document names, and its rc blocks
    console  run by Tests/Tools/DocumentedCommandsTest.cpp, which must name the document
    gdb      run by Tests/Debugger/check_session.py
    text     not code
    other    listed in NOT_RUN with the reason

A block without a fate is an error.
"""
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True

from check_examples import FOLDERS, HERE, ROOT  # noqa: E402

FENCE = re.compile(r"^( *)```(\w*)\n(.*?)^ *```$", re.MULTILINE | re.DOTALL)

# Blocks that cannot run in a test, by their first line.
NOT_RUN = {
    "./demo      #": "builds everything and needs real media files; Tests/Scripts run it on its own",
    "Tools/orl, Examples        hosts": "a drawing",
    "CriticalSection mLock;": "members of a class; House.LockedVariablesAreAccessedUnderTheirLocks compiles such members",
    "Scripts/check_format.py ": "House.FilesAreFormatted runs the first; the second changes the tree",
    "sudo apt-get install clang-tidy-14": "installs a package and takes an hour",
    "Scripts/setup linux ": "would build inside a build",
    "orl ingest /media/card": "needs a card; Tests/Ingest run both commands on their own files",
    "Safe to erase the source:": "output; Tests/Ingest compare it",
    "orl verify /projects": "needs an ingest; Tests/Ingest run it on their own files",
    '300 PNG "star.png"': "needs the pictures of the reader; the example Gallery compiles such lines",
    'orl_target_resources(importer texts.rc DEPENDS': "needs the pictures of the reader; the example Gallery has such a call",
    "orl verify /archive": "needs an archive; OrlVerifyPart.AllParts_JoinToTheResultOfOneRun runs such commands",
    "jobs=$(sbatch": "needs a scheduler; VerifyFarmOnLinux.TheScript_VerifiesAFolder runs the script without one",
    "Scripts/build linux\nScripts/check_abi.py": "builds and changes the tree; Package.AbiIsTheStoredOne runs the comparison",
    "g++ host.cpp -o host $(pkg-config": "run with the host of the document, see build_projects",
}


def blocks():
    """Yields (document, line, language, code) of each block; the indentation of a list is removed."""
    for path in [ROOT / "README.md", *sorted((ROOT / "Docs").glob("*.md"))]:
        text = path.read_text(encoding="utf-8")
        for match in FENCE.finditer(text):
            code = re.sub(rf"^{match[1]}", "", match[3], flags=re.MULTILINE)
            yield path, text.count("\n", 0, match.start()) + 2, match[2], code


def reason_not_to_run(code):
    return next((reason for start, reason in NOT_RUN.items() if code.startswith(start)), None)


def compile_bodies(compiler, build, found):
    """Compiles the blocks of each document, in order, as one function body; returns the compiler's messages."""
    text = f"#include <ORLFoundation.h>\n#include \"{HERE}/Surroundings.h\"\n"
    for number, path in enumerate(sorted({path for path, _, _ in found})):
        text += f"struct Document{number} : Host {{ void Example(); }};\nvoid Document{number}::Example()\n{{\n"
        text += "".join(f'#line {line} "{path}"\n{code}' for owner, line, code in found if owner == path) + "}\n"
    command = [compiler, "-std=c++17", "-fsyntax-only", "-w", f"-I{build}/include"]
    command += [f"-I{ROOT / folder}" for folder in FOLDERS] + ["-x", "c++", "-"]
    return subprocess.run(command, input=text, text=True, capture_output=True).stderr


def run(command, folder, environment=None):
    done = subprocess.run(command, cwd=folder, text=True, capture_output=True, env={**os.environ, **(environment or {})},
                          shell=isinstance(command, str))
    return "" if done.returncode == 0 else f"{command}: exit code {done.returncode}\n{done.stdout}{done.stderr}"


def build_project(compiler, prefix, folder, commands, sources):
    """Builds a project whose list file has these commands; returns what went wrong."""
    folder.mkdir()
    for name, text in sources.items():
        (folder / name).write_text(text, encoding="utf-8")
    (folder / "CMakeLists.txt").write_text("cmake_minimum_required(VERSION 3.25)\nproject(Reader CXX)\n" + commands)
    return run(["cmake", "-G", "Ninja", f"-DCMAKE_CXX_COMPILER={compiler}", f"-DCMAKE_PREFIX_PATH={prefix}", "-B", "out"],
               folder) or run(["cmake", "--build", "out"], folder)


def build_projects(compiler, build, by_language):
    """Builds and runs what the documents say about hosts and plug-ins; returns what went wrong."""
    host = next(code for path, _, code in by_language["cpp"] if path.name == "README.md" and "int main" in code)
    link = next(code for path, _, code in by_language["cmake"] if path.name == "README.md")
    plug_in = next(code for path, _, code in by_language["cmake"] if "add_library(importer" in code)
    texts = next(code for _, _, code in by_language["rc"] if "STRINGTABLE" in code)
    plain = next(code for _, _, code in by_language[""] if code.startswith("g++ host.cpp"))
    called = {"clang++": "clang++ -std=c++17"}.get(compiler, compiler) # README: its default is C++14
    with tempfile.TemporaryDirectory() as name:
        folder, prefix = Path(name), Path(name) / "prefix"
        for component in ("runtime", "dev"):
            problem = run(["cmake", "--install", build, "--component", component, "--prefix", prefix], folder)
            if problem:
                return problem
        libraries = str(next(prefix.rglob("libORLFoundation.so")).parent)
        pkg_config = {"PKG_CONFIG_PATH": f"{libraries}/pkgconfig", "LD_LIBRARY_PATH": libraries}
        return (build_project(compiler, prefix, folder / "host", "add_executable(host host.cpp)\n" + link,
                              {"host.cpp": host})
                or run(["out/host"], folder / "host")
                or build_project(compiler, prefix, folder / "importer", plug_in,
                                 {"importer.cpp": "int sImporter;\n", "texts.rc": texts})
                or run(plain.replace("g++", called), folder / "host", pkg_config)
                or run(["./host"], folder / "host", pkg_config))


def main():
    compiler, build = sys.argv[1:3]
    runner = (ROOT / "Tests/Tools/DocumentedCommandsTest.cpp").read_text(encoding="utf-8")
    by_language, bodies, problems = {}, [], []
    for path, line, language, code in blocks():
        by_language.setdefault(language, []).append((path, line, code))
        if language == "cpp" and "int main" not in code:
            bodies.append((path, line, code))
        relative = path.relative_to(ROOT).as_posix()
        has_fate = {"cpp": True, "text": True, "gdb": path.name == "debugging.md", "console": f'"{relative}"' in runner,
                    "cmake": "find_package" in code, "rc": "STRINGTABLE" in code}.get(language, False)
        if not has_fate and not reason_not_to_run(code):
            problems.append(f"{relative}:{line}: nothing runs this block, and NOT_RUN has no reason")
    for start in NOT_RUN:
        if not any(code.startswith(start) for found in by_language.values() for _, _, code in found):
            problems.append(f"NOT_RUN names a block that no document has: {start}")
    problems += [problem for problem in (compile_bodies(compiler, build, bodies),
                                         build_projects(compiler, build, by_language)) if problem]
    for problem in problems:
        print(problem)
    print(f"{sum(map(len, by_language.values()))} blocks")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
