#!/usr/bin/env python3
"""Tests the comparison of ABIs with planted changes: abi_test.py SCRIPTS_FOLDER"""
import lzma
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPTS = Path(sys.argv.pop())
sys.path.insert(0, str(SCRIPTS))
sys.dont_write_bytecode = True
import check_abi  # noqa: E402

CRV = lzma.decompress((SCRIPTS.parent / "CMake/Exports/CRV.abi.xz").read_bytes()).decode()
MEDIA = lzma.decompress((SCRIPTS.parent / "CMake/Exports/tvxmediatypes.abi.xz").read_bytes()).decode()
SYMBOL = "_ZN3CRV18GetApplicationTypeEv"


def report(stored, now):
    with tempfile.TemporaryDirectory() as work:
        before, after = Path(work) / "stored.abi", Path(work) / "now.abi"
        before.write_text(stored)
        after.write_text(now)
        return check_abi.compare(before, after)


class AbiTest(unittest.TestCase):
    def test_the_same_abi_is_not_reported(self):
        self.assertEqual("", report(MEDIA, MEDIA))

    def test_a_removed_symbol_is_reported(self):
        self.assertIn(SYMBOL, report(CRV, CRV.replace(SYMBOL, SYMBOL.replace("Type", "Kind"))))

    def test_an_added_symbol_is_allowed(self):
        line = next(line for line in CRV.splitlines(True) if "<elf-symbol" in line)
        added = CRV.replace(line, line + line.replace("_ZN3CRV", "_ZN3ORL"))
        self.assertNotEqual(CRV, added)
        self.assertEqual("", report(CRV, added))

    def test_a_class_of_another_size_is_reported(self):
        larger = MEDIA.replace("name='TickTime' size-in-bits='64'", "name='TickTime' size-in-bits='128'")
        self.assertIn("type size changed from 64 to 128", report(MEDIA, larger))


unittest.main()
