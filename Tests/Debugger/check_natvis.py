#!/usr/bin/env python3
"""Checks a natvis file against the headers and sources: check_natvis.py FILE.natvis FOLDER...

Checks that the file contains only elements of the natvis schema, that every class it names is declared in a header in
that namespace, and that every member read by an expression is declared in some header.
"""
import pathlib
import re
import sys
import xml.etree.ElementTree

NAMESPACE = "{http://schemas.microsoft.com/vstudio/debugger/natvis/2010}"
ELEMENTS = {"AutoVisualizer", "Type", "AlternativeType", "DisplayString", "StringView", "Expand", "Item", "ExpandedItem",
            "LinkedListItems", "HeadPointer", "NextPointer", "ValueNode"}
FOREIGN = re.compile(r"^std::(__cxx11::)?basic_string$")  # a standard class; our headers only alias it
STANDARD_MEMBERS = {"_M_dataplus", "_M_p", "_M_string_length", "_M_ptr"}


def bare(name):
    """Returns the name without template arguments."""
    return name.partition("<")[0]


def declares(text, qualified):
    *namespaces, name = qualified.split("::")
    if not re.search(r"\b(class|struct)\s+(ORL_API\s+|TVXCORE_API\s+)?([A-Za-z]+::)?%s\b" % name, text):
        return False
    # A nested class is declared inside its class or defined as Class::Nested.
    return all(re.search(r"\b(namespace|class|struct)\s+(ORL_API\s+)?%s\b" % scope, text)
               or re.search(r"\b%s::%s\b" % (scope, name), text) for scope in namespaces)


def faults_of(natvis, headers):
    root = xml.etree.ElementTree.parse(natvis).getroot()
    all_text = "\n".join(headers)
    types = 0
    for element in root.iter():
        tag = element.tag.replace(NAMESPACE, "")
        if tag not in ELEMENTS or not element.tag.startswith(NAMESPACE):
            yield "there is no element %s" % element.tag
        if tag in ("Type", "AlternativeType"):
            types += 1
            name = bare(element.get("Name"))
            if not FOREIGN.match(name) and not any(declares(text, name) for text in headers):
                yield "no header declares %s" % name
        for expression in (element.text or "", element.get("Condition") or ""):
            for member in re.findall(r"\b(?:m[A-Z]\w*|_M_\w+)", expression):
                if member not in STANDARD_MEMBERS and not re.search(r"\b%s\b" % member, all_text):
                    yield "no header declares the member %s" % member
            for name in re.findall(r"\(((?:ORL|tvx\w+)(?:::\w+)+)\**\)", expression):
                if not any(declares(text, name) for text in headers):
                    yield "no header declares %s" % name
    if types == 0:
        yield "it names no type"


def main():
    files = [path for folder in sys.argv[2:] for ending in ("*.h", "*.cpp")
             for path in sorted(pathlib.Path(folder).rglob(ending))]
    headers = [path.read_text(encoding="utf-8") for path in files]
    faults = list(faults_of(sys.argv[1], headers))
    for fault in faults:
        print("%s: %s" % (sys.argv[1], fault))
    return 1 if faults else 0


sys.exit(main())
