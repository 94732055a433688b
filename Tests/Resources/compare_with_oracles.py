#!/usr/bin/env python3
"""Compares what orl finds in Windows modules with what pefile and wrestool find: compare_with_oracles.py ORL WRESTOOL MODULE...

Prints each difference; exit code 1 if anything differs.
"""
import json
import subprocess
import sys

import pefile


def name_of(entry):
    return str(entry.name) if entry.name is not None else entry.id


def by_pefile(path):
    module = pefile.PE(path)
    found = {}
    for kind in module.DIRECTORY_ENTRY_RESOURCE.entries:
        for resource in kind.directory.entries:
            for language in resource.directory.entries:
                data = language.data.struct
                contents = module.get_data(data.OffsetToData, data.Size)
                found[name_of(kind), name_of(resource), language.id] = contents
    return found


def by_orl(orl, path):
    listing = json.loads(subprocess.run([orl, "res", "list", path, "--json"], check=True, capture_output=True).stdout)
    return {(entry["type"], entry["name"], entry["language"]): entry["size"] for entry in listing["resources"]}


def extract(orl, path, key):
    kind, name, language = (f"#{part}" if isinstance(part, int) else part for part in key)
    command = [orl, "res", "extract", path, kind, name, "--language", language[1:]]
    return subprocess.run(command, check=True, capture_output=True).stdout


def by_wrestool(wrestool, path, key):
    command = [wrestool, "-x", "--raw"]
    for option, part in zip(("type", "name", "language"), key):
        command.append(f"--{option}={part}")
    return subprocess.run([*command, path], check=True, capture_output=True).stdout


def compare(orl, wrestool, path):
    faults = []
    expected = by_pefile(path)
    found = by_orl(orl, path)
    if set(expected) != set(found):
        faults.append(f"{path}: only pefile: {set(expected) - set(found)}, only orl: {set(found) - set(expected)}")
    for key in set(expected) & set(found):
        contents = extract(orl, path, key)
        if len(expected[key]) != found[key] or contents != expected[key]:
            faults.append(f"{path}: {key}: other bytes than pefile finds")
        if all(isinstance(part, int) for part in key) and by_wrestool(wrestool, path, key) != contents:
            faults.append(f"{path}: {key}: other bytes than wrestool finds")
    return faults


def main():
    orl, wrestool, *modules = sys.argv[1:]
    faults = [fault for path in modules for fault in compare(orl, wrestool, path)]
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
