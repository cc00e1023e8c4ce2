#!/usr/bin/env python3
"""The symbols the declaration set declares, one a line.

Each `@interface Name` gives `_OBJC_CLASS_$_Name` and `_OBJC_METACLASS_$_Name`,
each C function or constant declared outside an interface `_name`. A class or
function declared with an iOS availability newer than the deployment target
is printed with ` weak`: the dylib must bind it weakly, so that it loads on
the older system, where the code that uses it is guarded by a runtime check.

Usage: declared_symbols.py INCLUDE_DIR [DEPLOYMENT_MAJOR]
Imported by check_sdk_stubs.py, which wants them header by header.
"""
import pathlib
import re
import sys

AVAIL = re.compile(r"availability\(\s*ios\s*,\s*introduced\s*=\s*([0-9.]+)\s*\)")
IFACE = re.compile(r"^@interface\s+(\w+)\s*(?::|<|$)")
FUNC = re.compile(r"^(?:extern\s+\"C\"\s+)?[A-Za-z_][\w\s\*]*?\b(\w+)\s*\((?:[^;]*)\)\s*;")
CONST = re.compile(r"^extern\s+(?:\"C\"\s+)?[\w\s\*]*?\b(\w+)\s*;")


def logical_lines(text):
    """A declaration broken after a comma or an opening parenthesis is one line."""
    lines, joined = [], ""
    for raw in text.splitlines():
        joined += raw.strip() if not joined else " " + raw.strip()
        if not joined.endswith((",", "(")):
            lines.append(joined)
            joined = ""
    return lines


def header_symbols(text, deployment):
    """{symbol: weak} for one header."""
    symbols = {}
    pending_since = None  # an availability attribute on the line(s) before
    in_interface = False
    for line in logical_lines(text):
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
    return symbols


def declared(root, deployment=14.0):
    """{header path relative to root: {symbol: weak}}."""
    root = pathlib.Path(root)
    return {h.relative_to(root).as_posix(): header_symbols(h.read_text(), deployment)
            for h in sorted(root.rglob("*.h"))}


def main():
    deployment = float(sys.argv[2]) if len(sys.argv) > 2 else 14.0
    symbols = {}
    for per_header in declared(sys.argv[1], deployment).values():
        symbols.update(per_header)
    for name in sorted(symbols):
        print(name + (" weak" if symbols[name] else ""))


if __name__ == "__main__":
    main()
