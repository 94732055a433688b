#!/usr/bin/env python3
"""Checks which symbols a shared library exports, or a host that is linked to the libraries.

  check_exports.py elf LIBRARY SONAME HEADERS   every symbol is named in the public headers and has the version SONAME
  check_exports.py pe LIBRARY NAME HEADERS      every symbol is named in the public headers, and the DLL has this name
  check_exports.py host PROGRAM                 the program defines no library symbol except compile-time constants

HEADERS is the folder of the library's public headers. Exit code 1 if a symbol breaks the rule, or if there are none.
"""
import pathlib
import re
import subprocess
import sys

OURS = ("ORL", "tvxcore", "tvxmediatypes", "CRV")
# The facets of 16-bit streams, which <tvxcore/UTF16Facets.h> declares.
FACETS = re.compile(r"_Z(NK?|T[ISV]N?)(St5ctypeItE|St7__cxx118numpunctItE)|_ZNSt7num_(put|get)It.*E2idE$")
# The Windows compiler exports these with exported classes that derive from them, but no other library imports them.
BASES_ON_WINDOWS = ("_ZTISt9bad_alloc", "_ZTISt9exception")
SPECIAL = re.compile(r"_Z(?:T[ISVTC]|GV|Z|T[hv]n?\d+_(?:n\d+_)?|Tc.*?_)?")


def read(*command):
    return subprocess.run(command, text=True, capture_output=True, check=True).stdout


def words_of(mangled):
    """Returns the components of a symbol's name without its parameters: ORL, File, Open for _ZN3ORL4File4OpenEv."""
    rest = mangled[SPECIAL.match(mangled).end():]
    nested = re.match(r"N[VKO]*", rest)
    rest = rest[nested.end():] if nested else rest
    words = []
    while length := re.match(r"\d+", rest):
        end = length.end() + int(length[0])
        words.append(rest[length.end():end])
        rest = rest[end:]
        if not nested:
            break
    return words


def elf_symbols(path):
    """Yields name, version, binding, type and section of each defined dynamic symbol."""
    for line in read("readelf", "--dyn-syms", "-W", path).splitlines():
        fields = line.split()
        if len(fields) >= 8 and fields[0][:-1].isdigit() and fields[6] != "UND" and fields[4] != "LOCAL":
            name, _, version = fields[7].partition("@")
            yield name, version.lstrip("@"), fields[4], fields[3], fields[6]


def pe_symbols(path):
    table = read("x86_64-w64-mingw32-objdump", "-p", path).split("[Ordinal/Name Pointer] Table")[1]
    return re.findall(r"^\t\[ *\d+\] (?:\+base\[ *\d+\] +[0-9a-f]+ )?(\S+)", table, re.M)


def header_words(folder):
    text = "\n".join(path.read_text(encoding="utf-8") for path in pathlib.Path(folder).rglob("*.h"))
    return set(re.findall(r"\w+", text))


def check_names(names, folder, faults):
    known = header_words(folder)
    for name in names:
        if FACETS.match(name):
            continue
        words = words_of(name)
        if not words or (words[0] not in OURS and not words[0].startswith("ORLGet")):
            faults.append(f"{name} is in no namespace of ours")
        elif missing := [word for word in words if word not in known]:
            faults.append(f"{name} is not in the public headers: {missing[0]}")


def check_elf(path, soname, folder, faults):
    if f"soname: [{soname}]" not in read("readelf", "-d", "-W", path):
        faults.append(f"it is not called {soname}")
    names = []
    for name, version, binding, _, section in elf_symbols(path):
        if section == "ABS" and name == soname:
            continue
        names.append(name)
        if version != soname:
            faults.append(f"{name} has the version [{version}]")
        if binding == "UNIQUE":
            faults.append(f"{name} is unique in the process, so the library is never unloaded")
    check_names(names, folder, faults)
    return names


def check_pe(path, dll, folder, faults):
    if not re.search(rf"^Name\s+\w+ {re.escape(dll)}$", read("x86_64-w64-mingw32-objdump", "-p", path), re.M):
        faults.append(f"it is not called {dll}")
    names = [name for name in pe_symbols(path) if name not in BASES_ON_WINDOWS]
    check_names(names, folder, faults)
    return names


def check_host(path, faults):
    """Checks that the host exports no library symbol that it compiles itself, except compile-time constants.

    Such a symbol has no version, and the loader would prefer it to that of any plug-in.
    """
    names = []
    for name, version, _, kind, _ in elf_symbols(path):
        words = words_of(name) if name.startswith("_Z") else []
        if version or not words or words[0] not in OURS:
            continue
        names.append(name)
        if kind != "OBJECT" or not re.match(r"k[A-Z]|ORL_MAX_PATH$", words[-1]):
            faults.append(f"{name} is compiled by hosts and exported by a library")
    return names


def main():
    faults = []
    kind, path, *rest = sys.argv[1:]
    names = {"elf": check_elf, "pe": check_pe, "host": check_host}[kind](path, *rest, faults)
    for fault in faults:
        print(f"{path}: {fault}")
    print(f"{len(names)} symbols, {len(faults)} faults")
    return 1 if faults or not names else 0


if __name__ == "__main__":
    sys.exit(main())
