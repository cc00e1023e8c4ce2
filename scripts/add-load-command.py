#!/usr/bin/env python3
"""Adds an LC_LOAD_DYLIB command to a Mach-O executable, for side-loading.

The command goes after the existing ones, into the padding the linker leaves
between the load commands and the first section, in every arm64 slice (a
universal file's other slices are left as they are: they could not load an
arm64 library). Nothing else of the file changes; its code signature, if any,
no longer matches and the app is re-signed afterwards. A file that already
loads the library is left untouched. Written to a copy that replaces the file
only when complete, so an error leaves the file as it was.

Usage: add-load-command.py EXECUTABLE [LIBRARY]
       (LIBRARY: @executable_path/Frameworks/libquenby.dylib unless given)
"""
import os
import shutil
import struct
import sys
import tempfile

try:
    from macholib import MachO, mach_o
    from macholib.ptypes import sizeof
except ImportError:
    MachO = None

DEFAULT_LIBRARY = "@executable_path/Frameworks/libquenby.dylib"
MACHO_MAGICS = {0xFEEDFACE, 0xCEFAEDFE, 0xFEEDFACF, 0xCFFAEDFE, 0xCAFEBABE, 0xCAFEBABF}
CPU_TYPE_ARM64 = 0x0100000C  # arm64 and arm64e
ARCH_NAMES = {7: "i386", 12: "arm", 0x01000007: "x86_64", CPU_TYPE_ARM64: "arm64", 0x0200000C: "arm64_32"}


class Refused(Exception):
    pass


def read_macho(path):
    with open(path, "rb") as f:
        head = f.read(4)
    if len(head) < 4 or struct.unpack(">I", head)[0] not in MACHO_MAGICS:
        raise Refused(f"{path} is not a Mach-O file")
    try:
        return MachO.MachO(path, allow_unknown_load_commands=True)
    except (ValueError, struct.error) as e:
        raise Refused(f"{path} is not a Mach-O file macholib can read: {e}")


def loaded_libraries(header):
    kinds = (mach_o.LC_LOAD_DYLIB, mach_o.LC_LOAD_WEAK_DYLIB, mach_o.LC_REEXPORT_DYLIB,
             mach_o.LC_LAZY_LOAD_DYLIB, mach_o.LC_LOAD_UPWARD_DYLIB)
    names = []
    for lc, cmd, data in header.commands:
        if lc.cmd in kinds:
            start = cmd.name - (sizeof(lc) + sizeof(cmd))
            names.append(data[start:].split(b"\0", 1)[0].decode())
    return names


def add_command(header, library):
    lc = mach_o.load_command(cmd=mach_o.LC_LOAD_DYLIB, _endian_=header.endian)
    cmd = mach_o.dylib_command(_endian_=header.endian)
    fixed = sizeof(lc) + sizeof(cmd)
    name = library.encode() + b"\0"
    name += b"\0" * (-(fixed + len(name)) % 8)
    lc.cmdsize = fixed + len(name)
    cmd.name = fixed
    cmd.timestamp = 2
    # 0 asks for no particular version of the library.
    cmd.current_version = 0
    cmd.compatibility_version = 0
    free = header.low_offset - header.total_size
    if lc.cmdsize > free:
        raise Refused(f"no room for the load command: {free} bytes free after the load commands, "
                      f"{lc.cmdsize} needed (relink the executable with a larger -headerpad)")
    header.commands.append((lc, cmd, name))
    header.header.ncmds += 1
    header.changedHeaderSizeBy(lc.cmdsize)


def main(argv):
    if len(argv) not in (2, 3) or argv[1].startswith("-"):
        print(__doc__.split("Usage:", 1)[1].strip(), file=sys.stderr)
        return 2
    path = argv[1]
    library = argv[2] if len(argv) == 3 else DEFAULT_LIBRARY
    try:
        if MachO is None:
            raise Refused("needs the macholib module (Debian: python3-macholib; elsewhere: pip install macholib)")
        if not os.path.isfile(path):
            raise Refused(f"{path} is not a file")
        macho = read_macho(path)
        arm64 = [h for h in macho.headers if h.header.cputype == CPU_TYPE_ARM64]
        if not arm64:
            found = ", ".join(ARCH_NAMES.get(h.header.cputype, hex(h.header.cputype)) for h in macho.headers)
            kind = "a universal file" if macho.fat else "a Mach-O file"
            raise Refused(f"{path} is {kind} with no arm64 slice (it has: {found})")
        todo = [h for h in arm64 if library not in loaded_libraries(h)]
        if not todo:
            print(f"add-load-command: {path} already loads {library}; nothing added")
            return 0
        for header in todo:
            add_command(header, library)
        folder = os.path.dirname(os.path.abspath(path))
        fd, scratch = tempfile.mkstemp(dir=folder, prefix=".add-load-command.")
        os.close(fd)
        try:
            shutil.copy2(path, scratch)
            with open(scratch, "r+b") as f:
                macho.write(f)
            os.replace(scratch, path)
        except BaseException:
            os.unlink(scratch)
            raise
    except Refused as e:
        print(f"add-load-command: {e}", file=sys.stderr)
        return 1
    print(f"add-load-command: {path} now loads {library}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
