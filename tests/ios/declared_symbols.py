#!/usr/bin/env python3
"""The symbols the declaration set declares, one a line, for the dylib check.

Each `@interface Name` gives `_OBJC_CLASS_$_Name` and `_OBJC_METACLASS_$_Name`,
each C function or constant declared outside an interface `_name`. A class or
function declared with an iOS availability newer than the deployment target
is printed with ` weak`: the dylib must bind it weakly, so that it loads on
the older system, where the code that uses it is guarded by a runtime check.

Usage: declared_symbols.py INCLUDE_DIR [DEPLOYMENT_MAJOR]
"""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
deployment = float(sys.argv[2]) if len(sys.argv) > 2 else 14.0
AVAIL = re.compile(r"availability\(\s*ios\s*,\s*introduced\s*=\s*([0-9.]+)\s*\)")
IFACE = re.compile(r"^@interface\s+(\w+)\s*(?::|<|$)")
FUNC = re.compile(r"^(?:extern\s+\"C\"\s+)?[A-Za-z_][\w\s\*]*?\b(\w+)\s*\((?:[^;]*)\)\s*;")
CONST = re.compile(r"^extern\s+(?:\"C\"\s+)?[\w\s\*]*?\b(\w+)\s*;")

symbols = {}
for header in sorted(root.rglob("*.h")):
    pending_since = None  # an availability attribute on the line(s) before
    in_interface = False
    lines, joined = [], ""
    for raw in header.read_text().splitlines():  # a declaration broken after a comma is one
        joined += raw.strip() if not joined else " " + raw.strip()
        if not joined.endswith((",", "(")):
            lines.append(joined)
            joined = ""
    for line in lines:
        if line.startswith("//") or line.startswith("#") or not line:
            continue
        avail = AVAIL.search(line)
        since = float(avail.group(1)) if avail else None
        if line.startswith("__attribute__") and not line.rstrip(")").endswith(";"):
            pending_since = since
            continue
        m = IFACE.match(line)
        if m:
            weak = (pending_since or since or 0) > deployment
            for kind in ("CLASS", "METACLASS"):
                symbols[f"_OBJC_{kind}_$_{m.group(1)}"] = weak
            in_interface = True
            pending_since = None
            continue
        if line.startswith("@end"):
            in_interface = False
            continue
        pending_since = None
        if in_interface or line.startswith(("typedef", "-", "+", "@", "}", "{")):
            continue
        for pattern in (CONST, FUNC):
            m = pattern.match(line)
            if m:
                symbols["_" + m.group(1)] = (since or 0) > deployment
                break

for name in sorted(symbols):
    print(name + (" weak" if symbols[name] else ""))
