#!/usr/bin/env python3
"""Checks a build of the host app against what Quenby hooks and sends to.

    scripts/check-host.py DUMP_DIR [--interface FILE]

DUMP_DIR holds the headers a class dump of the host's executable writes, one
ClassName.h per class (categories as ClassName+Category.h), with lines such as
`- (void)onNewMsgArriving:(id)arg1 NotifyFlag:(unsigned int)arg2;` and
`@property(readonly, nonatomic) NSArray *items;`. FILE (by default
host-interface.txt beside this script) lists every host method the system
hooks or sends to, with the types it uses; it is written by
quenby-host-interface and a test keeps it equal to that program's output.

Each method is printed as found, missing (its class or selector is not in the
dump: the hook is not installed and the host keeps its code) or different
types. Types are compared as the library compares them at install: integers by
width whatever their sign, objects with objects, pointers with pointers, a
bool only with a bool. Exit status: 0 when every hook that found its method
fits it, 1 when a hook would be skipped for its types, 2 for bad input.
"""

import argparse
import os
import re
import sys

# ---------------------------------------------------------------- encodings

QUALIFIERS = set("rnNoORVAj")


def split_encoding(enc):
    """The types of a normalized encoding: "v@:@q" -> ["v", "@", ":", "@", "q"]."""
    out = []
    i = 0
    while i < len(enc):
        j = skip_type(enc, i)
        if j == i:
            raise ValueError("bad encoding %r" % enc)
        out.append(enc[i:j])
        i = j
    return out


def skip_type(enc, i):
    while i < len(enc) and enc[i] in QUALIFIERS:
        i += 1
    if i >= len(enc):
        return i
    c = enc[i]
    if c in "{([":
        close = {"{": "}", "(": ")", "[": "]"}[c]
        depth = 0
        while i < len(enc):
            if enc[i] == '"':
                i = enc.index('"', i + 1)
            elif enc[i] == c:
                depth += 1
            elif enc[i] == close:
                depth -= 1
                if depth == 0:
                    return i + 1
            i += 1
        return i
    if c == "^":
        return skip_type(enc, i + 1)
    if c == "@":
        i += 1
        if enc[i:i + 1] == "?":
            return i + 1
        if enc[i:i + 1] == '"':
            return enc.index('"', i + 1) + 1
        return i
    if c == "b":
        i += 1
        while i < len(enc) and enc[i].isdigit():
            i += 1
        return i
    return i + 1


def call_class(t):
    """What arm64 cares about in one type (the library's rule)."""
    t = t.lstrip("".join(QUALIFIERS))
    if t in ("q", "Q", "l", "L"):
        return "8"
    if t in ("i", "I"):
        return "4"
    if t in ("s", "S"):
        return "2"
    if t in ("c", "C"):
        return "1"
    if t[:1] in ("@", "#"):
        return "@"
    if t[:1] in ("^", "*", ":"):
        return "^"
    if t[:1] in "{(":
        m = re.match(r"[{(]([^=}){(]*)", t)
        return t[0] + (m.group(1) if m else "")  # a struct by its name
    return t


def same_call_types(a, b):
    ta, tb = split_encoding(a), split_encoding(b)
    return len(ta) == len(tb) and all(call_class(x) == call_class(y) for x, y in zip(ta, tb))


# ------------------------------------------------------- class-dump headers

SCALARS = {
    "void": "v",
    "_Bool": "B",
    "BOOL": "B",  # a bool on arm64
    "bool": "B",
    "char": "c",
    "signed char": "c",
    "unsigned char": "C",
    "short": "s",
    "unsigned short": "S",
    "int": "i",
    "unsigned int": "I",
    "unsigned": "I",
    "long": "q",
    "unsigned long": "Q",
    "long long": "q",
    "unsigned long long": "Q",
    "float": "f",
    "double": "d",
    "long double": "D",
    "id": "@",
    "Class": "#",
    "SEL": ":",
    "CDUnknownBlockType": "@?",
    "CDUnknownFunctionPointerType": "^?",
    "NSInteger": "q",
    "NSUInteger": "Q",
    "CGFloat": "d",
    "NSTimeInterval": "d",
    "instancetype": "@",
}


def encode_c_type(text):
    """A class-dump type, such as `unsigned int` or `NSString *`, as an encoding."""
    t = re.sub(r"\b(const|volatile|in|out|inout|bycopy|byref|oneway|__strong|__weak|"
               r"_Nullable|_Nonnull|nullable|nonnull|__kindof)\b", " ", text)
    t = re.sub(r"<[^>]*>", " ", t)  # protocols: id <P>, NSObject<P> *
    t = " ".join(t.split())
    if "(^" in t or t.endswith("^"):
        return "@?"  # a block
    stars = t.count("*")
    base = t.replace("*", "").strip()
    if stars == 0:
        if base in SCALARS:
            return SCALARS[base]
        m = re.match(r"(struct|union) (\w+)", base)
        if m:
            return ("{%s}" if m.group(1) == "struct" else "(%s)") % m.group(2)
        if re.match(r"CDStruct_\w+$|CG(Rect|Point|Size|AffineTransform)$|UIEdgeInsets$|"
                    r"NSRange$|_NSRange$", base):
            return "{%s}" % base
        raise ValueError("unknown type '%s'" % text.strip())
    if base in ("char", "signed char", "unsigned char") and stars == 1:
        return "*"
    if base in ("id", "Class", "SEL"):  # already pointers: id * is a pointer to one
        return "^" * stars + SCALARS[base]
    if re.match(r"[A-Z_]\w*$", base) and base not in SCALARS and not base.startswith("CDStruct"):
        # NSString *, UIView *: an object (NSError ** is a pointer to one)
        return "^" * (stars - 1) + "@"
    return "^" + (encode_c_type(base) if base != "void" else "v")


METHOD = re.compile(r"^\s*([+-])\s*\(([^)]*(?:\([^)]*\)[^)]*)*)\)\s*(.*?)\s*;")
PART = re.compile(r"(\w+)\s*:\s*\(((?:[^()]|\([^()]*\))*)\)\s*\w+")
INTERFACE = re.compile(r"^\s*@interface\s+(\w+)\s*(?::\s*(\w+))?")
PROPERTY = re.compile(r"^\s*@property\s*(\(([^)]*)\))?\s*(.*?)\s*;")


def parse_method(line):
    """("-", "sel:more:", "v@:@I") from one declaration line, or None."""
    m = METHOD.match(line)
    if not m:
        return None
    kind, ret, rest = m.group(1), m.group(2), m.group(3)
    rest = re.sub(r"\s*(__attribute__\s*\(\(.*\)\)|NS_\w+(\(.*\))?)\s*$", "", rest)
    parts = PART.findall(rest)
    if parts:
        sel = "".join(name + ":" for name, _ in parts)
        args = [encode_c_type(t) for _, t in parts]
    else:
        sel = rest.strip()
        if not re.match(r"\w+$", sel):
            return None
        args = []
    return kind, sel, encode_c_type(ret) + "@:" + "".join(args)


def parse_property(line):
    """The getter and, unless read-only, the setter a @property declares."""
    m = PROPERTY.match(line)
    if not m:
        return []
    attrs = [a.strip() for a in (m.group(2) or "").split(",")]
    decl = m.group(3)
    name_match = re.search(r"(\w+)\s*$", decl)
    if not name_match:
        return []
    name = name_match.group(1)
    ctype = decl[:name_match.start()].strip()
    enc = encode_c_type(ctype)
    getter, setter = name, "set" + name[:1].upper() + name[1:] + ":"
    for a in attrs:
        if a.startswith("getter="):
            getter = a.split("=", 1)[1].strip()
        if a.startswith("setter="):
            setter = a.split("=", 1)[1].strip()
    out = [("-", getter, enc + "@:")]
    if "readonly" not in attrs:
        out.append(("-", setter, "v@:" + enc))
    return out


def read_dump(folder):
    """{class: {(kind, selector): encoding}} from every header of the dump, and
    {class: superclass}."""
    classes = {}
    supers = {}
    problems = []
    for name in sorted(os.listdir(folder)):
        if not name.endswith(".h"):
            continue
        path = os.path.join(folder, name)
        with open(path, encoding="utf-8", errors="replace") as f:
            current = None
            for number, line in enumerate(f, 1):
                m = INTERFACE.match(line)
                if m:
                    current = classes.setdefault(m.group(1), {})
                    if m.group(2):
                        supers[m.group(1)] = m.group(2)
                    continue
                if line.strip().startswith("@end"):
                    current = None
                    continue
                if current is None:
                    continue
                try:
                    found = ([parse_method(line)] if METHOD.match(line) else parse_property(line))
                except ValueError as e:
                    problems.append("%s:%d: %s" % (name, number, e))
                    continue
                for entry in found:
                    if entry:
                        current[(entry[0], entry[1])] = entry[2]
    return classes, supers, problems


# ---------------------------------------------------------------- the check

LINE = re.compile(r"^(hook|send) ([+-])\[(\w+) ([\w:]+)\]((?: \S+)+)$")


def read_interface(path):
    entries = []
    with open(path, encoding="utf-8") as f:
        for number, line in enumerate(f, 1):
            line = line.rstrip("\n")
            if not line or line.startswith("#"):
                continue
            m = LINE.match(line)
            if not m:
                raise ValueError("%s:%d: not an interface line: %s" % (path, number, line))
            entries.append((m.group(1), m.group(2), m.group(3), m.group(4), m.group(5).split()))
    return entries


def lookup(classes, supers, cls, key):
    """The encoding of a method of `cls` or of a superclass in the dump (a dump
    lists only what each class itself defines)."""
    seen = set()
    while cls in classes and cls not in seen:
        seen.add(cls)
        if key in classes[cls]:
            return classes[cls][key]
        cls = supers.get(cls)
    return None


def check(entries, classes, supers):
    """The report lines, and whether a hook would be skipped."""
    lines = []
    counts = {}
    skipped = False
    for what, kind, cls, sel, types in entries:
        label = "%s[%s %s]" % (kind, cls, sel)
        methods = classes.get(cls)
        if methods is None:
            verdict, detail = "missing", " (no class %s)" % cls
        elif lookup(classes, supers, cls, (kind, sel)) is None:
            verdict, detail = "missing", ""
        else:
            host = lookup(classes, supers, cls, (kind, sel))
            if any(same_call_types(t, host) for t in types):
                verdict, detail = "found", ""
            else:
                verdict = "different"
                detail = ": host types %s, %s types %s" % (host, "hook" if what == "hook" else
                                                            "sent as", " or ".join(types))
                skipped = skipped or what == "hook"
        counts[(what, verdict)] = counts.get((what, verdict), 0) + 1
        lines.append("%-4s %-9s %s%s" % (what, verdict, label, detail))
    for what in ("hook", "send"):
        lines.append("%ss: %d found, %d missing, %d different" % (
            what, counts.get((what, "found"), 0), counts.get((what, "missing"), 0),
            counts.get((what, "different"), 0)))
    return lines, skipped


def main(argv):
    parser = argparse.ArgumentParser(description="Check a host build's class dump against "
                                     "what Quenby hooks and sends to.")
    parser.add_argument("dump_dir")
    parser.add_argument("--interface",
                        default=os.path.join(os.path.dirname(os.path.abspath(__file__)),
                                             "host-interface.txt"))
    args = parser.parse_args(argv)
    if not os.path.isdir(args.dump_dir):
        print("check-host: %s is not a folder" % args.dump_dir, file=sys.stderr)
        return 2
    try:
        entries = read_interface(args.interface)
    except (OSError, ValueError) as e:
        print("check-host: %s" % e, file=sys.stderr)
        return 2
    classes, supers, problems = read_dump(args.dump_dir)
    if not classes:
        print("check-host: no @interface in %s/*.h" % args.dump_dir, file=sys.stderr)
        return 2
    for p in problems:
        print("check-host: skipped a declaration at %s" % p, file=sys.stderr)
    lines, skipped = check(entries, classes, supers)
    print("\n".join(lines))
    return 1 if skipped else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
