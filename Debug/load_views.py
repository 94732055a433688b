"""GDB runs this file when it loads libORLFoundation, beside which (or below gdb/auto-load) it is installed.

Loads the views of the same installation, wherever its tree has been moved.
"""
import os

import gdb


def load_views():
    folder = os.path.dirname(os.path.realpath(gdb.current_objfile().filename))
    while folder != os.path.dirname(folder):
        folder = os.path.dirname(folder)
        views = os.path.join(folder, "share", "ORLFoundation", "debug", "orl_printers.py")
        if os.path.exists(views):
            gdb.execute("source " + views)
            return


load_views()
