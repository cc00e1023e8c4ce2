#!/usr/bin/env python3
"""Lays out the check build's SDK folder from the declaration set.

The folder has what the link needs of an iPhoneOS SDK: a text stub (.tbd) for
each framework and library the system links, exporting exactly what the
declaration set declares (its headers, and exports.txt for what no header
declares), and SDKSettings.json. The check build then links like the build
against Apple's SDK, with no dynamic lookup: a name the declaration set lacks
fails the link. libc++ is the stand-in's, whose headers the check compiles
with: its stub lists what the given C++ libraries export.

Usage: check_sdk_stubs.py DECLARATIONS OUT --nm LLVM_NM --cxx-library LIB...
"""
import argparse
import json
import pathlib
import shutil
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from declared_symbols import declared  # noqa: E402

DEPLOYMENT = "14.0"
# Library: its stub in the SDK, the names it is also found by, its install name.
LIBRARIES = {
    "libSystem": ("usr/lib/libSystem.B.tbd", ["usr/lib/libSystem.tbd"], "/usr/lib/libSystem.B.dylib"),
    "libobjc": ("usr/lib/libobjc.A.tbd", ["usr/lib/libobjc.tbd"], "/usr/lib/libobjc.A.dylib"),
    "libc++": ("usr/lib/libc++.1.tbd", ["usr/lib/libc++.tbd"], "/usr/lib/libc++.1.dylib"),
}
# Header folders that are not frameworks; the rest are, by their name.
FOLDER_LIBRARY = {"objc": "libobjc", "dispatch": "libSystem", "os": "libSystem"}
# Loose headers of the SDK's own (not stand-ins over the C library's), by library.
LOOSE_LIBRARY = {"notify.h": "libSystem"}
# Defined by the linker in every image, exported by no library.
LINKER_DEFINED = {"___dso_handle"}
OBJC_CLASS = "_OBJC_CLASS_$_"


def fail(message):
    print(f"check_sdk_stubs: {message}", file=sys.stderr)
    sys.exit(1)


def library_of(header):
    parts = header.split("/")
    if len(parts) == 1:
        return LOOSE_LIBRARY.get(parts[0])  # else a loose stand-in over the C library's
    return FOLDER_LIBRARY.get(parts[0], parts[0])


def stub_place(library):
    if library in LIBRARIES:
        return LIBRARIES[library]
    return (f"System/Library/Frameworks/{library}.framework/{library}.tbd", [],
            f"/System/Library/Frameworks/{library}.framework/{library}")


def collect(declarations):
    exports = {}  # library -> set of names
    owner = {}

    def add(library, name, where):
        if name in LINKER_DEFINED:
            return
        if owner.get(name, library) != library:
            fail(f"{name} ({where}) is already exported by {owner[name]}")
        owner[name] = library
        exports.setdefault(library, set()).add(name)

    for header, symbols in declared(declarations / "include", float(DEPLOYMENT)).items():
        library = library_of(header)
        for name in symbols:
            if library is None:
                fail(f"include/{header} declares {name} but is in no library's folder")
            add(library, name, f"include/{header}")
    listed = declarations / "exports.txt"
    for number, line in enumerate(listed.read_text().splitlines(), 1):
        fields = line.split("#", 1)[0].split()
        if len(fields) == 1:
            fail(f"{listed}:{number}: a library with no names")
        if fields:
            for name in fields[1:]:
                add(fields[0], name, f"{listed.name}:{number}")
    return exports


def cxx_exports(nm, libraries):
    names = set()
    for library in libraries:
        run = subprocess.run([nm, "-D", "--defined-only", "-j", library], capture_output=True, text=True)
        if run.returncode != 0 or not run.stdout.strip():
            fail(f"no exports read from {library}: {run.stderr.strip()}")
        # ELF names carry no leading underscore and may carry a version.
        names.update("_" + n.split("@", 1)[0] for n in run.stdout.split())
    return names


def quoted(names):
    return ", ".join("'" + n + "'" for n in sorted(names))


def stub_text(install_name, names):
    classes = {n[len(OBJC_CLASS):] for n in names if n.startswith(OBJC_CLASS)}
    plain = {n for n in names if not n.startswith(("_OBJC_CLASS_$_", "_OBJC_METACLASS_$_"))}
    lines = ["--- !tapi-tbd", "tbd-version:     4", "targets:         [ arm64-ios ]",
             f"install-name:    '{install_name}'", "exports:", "  - targets:         [ arm64-ios ]"]
    if plain:
        lines.append(f"    symbols:         [ {quoted(plain)} ]")
    if classes:
        lines.append(f"    objc-classes:    [ {quoted(classes)} ]")
    lines.append("...")
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser(description="The check build's SDK folder from the declaration set")
    parser.add_argument("declarations", type=pathlib.Path)
    parser.add_argument("out", type=pathlib.Path)
    parser.add_argument("--nm", required=True)
    parser.add_argument("--cxx-library", action="append", required=True)
    args = parser.parse_args()
    if not (args.declarations / "include").is_dir():
        fail(f"{args.declarations} has no include/ folder: not a declaration set")

    exports = collect(args.declarations)
    exports.setdefault("libc++", set()).update(cxx_exports(args.nm, args.cxx_library))
    if args.out.exists():
        shutil.rmtree(args.out)
    for library, names in sorted(exports.items()):
        stub, aliases, install_name = stub_place(library)
        path = args.out / stub
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(stub_text(install_name, names))
        for alias in aliases:
            (args.out / alias).symlink_to(path.name)
    (args.out / "SDKSettings.json").write_text(json.dumps(
        {"CanonicalName": f"iphoneos{DEPLOYMENT}", "DisplayName": "Quenby declaration set",
         "Version": DEPLOYMENT}) + "\n")


if __name__ == "__main__":
    main()
