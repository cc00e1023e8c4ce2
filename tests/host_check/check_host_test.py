#!/usr/bin/env python3
"""scripts/check-host.py on class dumps written for the simulated host and its
variants, its type rule against the library's, its reading of class-dump
headers, and its list kept equal to what quenby-host-interface generates.

    check_host_test.py PATH_TO_quenby-host-interface
"""

import importlib.util
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
SCRIPT = os.path.join(ROOT, "scripts", "check-host.py")
INTERFACE = os.path.join(ROOT, "scripts", "host-interface.txt")
GENERATOR = None

module_spec = importlib.util.spec_from_file_location("check_host", SCRIPT)
check_host = importlib.util.module_from_spec(module_spec)
module_spec.loader.exec_module(check_host)


def compose(dump, into):
    """A variant's dump is the default one with the variant's headers laid
    over it and the headers its removed.txt names taken out."""
    removed = set()
    listed = os.path.join(HERE, dump, "removed.txt")
    if os.path.exists(listed):
        with open(listed) as f:
            removed = {line.strip() for line in f if line.strip()}
    for folder in ("default", dump):
        for name in os.listdir(os.path.join(HERE, folder)):
            if name.endswith(".h") and name not in removed:
                shutil.copy(os.path.join(HERE, folder, name), os.path.join(into, name))


def run(dump, *extra):
    if not os.path.isdir(os.path.join(HERE, dump)):
        return run_on(os.path.join(HERE, dump), *extra)
    with tempfile.TemporaryDirectory() as d:
        compose(dump, d)
        return run_on(d, *extra)


def run_on(folder, *extra):
    p = subprocess.run([sys.executable, SCRIPT, folder] + list(extra), capture_output=True,
                       text=True)
    return p.returncode, p.stdout.splitlines(), p.stderr


def verdicts(lines):
    """{label: (kind, verdict)} from the report."""
    out = {}
    for line in lines:
        parts = line.split()
        if len(parts) >= 3 and parts[0] in ("hook", "send") and parts[1] in (
                "found", "missing", "different"):
            label = " ".join(parts[2:4]).split("]")[0] + "]"
            out[label] = (parts[0], parts[1])
    return out


ARRIVING = "-[QuickReplyMsgMgr onNewMsgArriving:NotifyFlag:]"
PLAY = "-[MainFrameLogicController playNewMsgNotify:NotifyFlag:]"
REPORT = "-[VoipCXMgr reportIncomingCallFromUser:ofType:withMsg:isPushKit:displayName:completion:]"


class Dumps(unittest.TestCase):
    def test_the_default_build_fits_every_hook_it_has(self):
        status, out, err = run("default")
        self.assertEqual(status, 0, err)
        v = verdicts(out)
        self.assertEqual(v[ARRIVING], ("hook", "found"))
        self.assertEqual(v[REPORT], ("hook", "found"))
        self.assertNotIn("different", [x[1] for x in v.values() if x[0] == "hook"])
        # The alternatives of other builds are not in this one.
        self.assertEqual(v["-[MonoServiceMsgMgr showLocalNotificationByIlinkWithMsg:"
                           "repeatVibration:isCallkitAvailable:]"], ("hook", "missing"))
        self.assertRegex(out[-2], r"^hooks: \d+ found, \d+ missing, 0 different$")

    def test_unsigned_and_32_bit_integers_fit_the_hooks_of_their_width(self):
        for dump in ("ints-unsigned", "ints-32"):
            with self.subTest(dump):
                status, out, err = run(dump)
                self.assertEqual(status, 0, out)
                v = verdicts(out)
                self.assertEqual(v[ARRIVING], ("hook", "found"))
                self.assertEqual(v[PLAY], ("hook", "found"))

    def test_a_changed_signature_is_a_skipped_hook(self):
        # This build's message-arrival method takes an object where the flag was.
        status, out, err = run("notify-args-changed")
        self.assertEqual(status, 1)
        line = [l for l in out if ARRIVING in l]
        self.assertEqual(len(line), 1)
        self.assertIn("hook different", line[0])
        self.assertIn("host types v@:@@, hook types v@:@I or v@:@q", line[0])
        self.assertEqual(verdicts(out)[PLAY], ("hook", "found"))

    def test_a_missing_class_is_reported_but_skips_nothing(self):
        status, out, err = run("lacks-quickreply")
        self.assertEqual(status, 0)
        line = [l for l in out if ARRIVING in l][0]
        self.assertIn("missing", line)
        self.assertIn("(no class QuickReplyMsgMgr)", line)
        self.assertEqual(verdicts(out)[PLAY], ("hook", "found"))

    def test_bad_input_is_a_clear_error(self):
        status, out, err = run("no-such-folder")
        self.assertEqual(status, 2)
        self.assertIn("is not a folder", err)
        with tempfile.TemporaryDirectory() as empty:
            p = subprocess.run([sys.executable, SCRIPT, empty], capture_output=True, text=True)
            self.assertEqual(p.returncode, 2)
            self.assertIn("no @interface", p.stderr)
            bad = os.path.join(empty, "bad.txt")
            with open(bad, "w") as f:
                f.write("hook nonsense\n")
            p = subprocess.run([sys.executable, SCRIPT, os.path.join(HERE, "default"),
                                "--interface", bad], capture_output=True, text=True)
            self.assertEqual(p.returncode, 2)
            self.assertIn("not an interface line", p.stderr)


class TypeRule(unittest.TestCase):
    """The library's rule (rt::sameCallTypes), case for case."""

    def test_integers_by_width_whatever_their_sign(self):
        same = check_host.same_call_types
        self.assertTrue(same("v@:@q", "v@:@Q"))
        self.assertTrue(same("v@:l", "v@:q"))
        self.assertTrue(same("I@:i", "i@:I"))
        self.assertFalse(same("v@:@q", "v@:@I"))
        self.assertFalse(same("v@:s", "v@:c"))

    def test_objects_pointers_and_bools(self):
        same = check_host.same_call_types
        self.assertTrue(same("v@:@", "v@:#"))
        self.assertTrue(same("v@:@", 'v@:@"NSString"'))
        self.assertTrue(same("v@:@?", "v@:@"))
        self.assertTrue(same("v@:^v", "v@:*"))
        self.assertTrue(same("v@::", "v@:^{X=i}"))
        self.assertFalse(same("v@:@", "v@:^v"))
        self.assertFalse(same("B@:", "c@:"))
        self.assertTrue(same("B@:", "B@:"))

    def test_arity_and_structs(self):
        same = check_host.same_call_types
        self.assertFalse(same("v@:@", "v@:@@"))
        self.assertTrue(same("v@:{CGRect={CGPoint=dd}{CGSize=dd}}", "v@:{CGRect}"))
        self.assertFalse(same("v@:{CGRect}", "v@:{CGPoint}"))
        self.assertFalse(same("v@:d", "v@:q"))


class Headers(unittest.TestCase):
    HEADER = """//
//     Generated by class-dump 3.5.
//
#import <objc/NSObject.h>

@class NSString;
@protocol MMService;

@interface Mgr : NSObject <MMService, NSCopying>
{
    NSString *m_nsName;
    _Bool m_bOn;
}

+ (id)sharedInstance;
- (void)onNewMsgArriving:(id)arg1 NotifyFlag:(unsigned int)arg2;
- (_Bool)canShowPushForContact:(id)arg1 msgWrap:(id)arg2;
- (void)report:(NSString *)arg1 ofType:(NSNumber *)arg2 completion:(CDUnknownBlockType)arg3;
- (void)end:(void (^)(id, _Bool))arg1 at:(double)arg2 room:(unsigned long long)arg3;
- (id)initWithFrame:(struct CGRect)arg1;
- (void)fill:(id *)arg1 name:(const char *)arg2 sel:(SEL)arg3 cls:(Class)arg4;
- (long long)count; // IMP=0x0000000100c0ffee
- (BOOL)isLegacy;
@property(retain, nonatomic) NSString *title;
@property(readonly, nonatomic) unsigned int flags;
@property(nonatomic, getter=isOn) _Bool on;
@end

@interface Mgr (Extra)
- (id <MMService>)service;
@end
"""

    def methods(self):
        with tempfile.TemporaryDirectory() as d:
            with open(os.path.join(d, "Mgr.h"), "w") as f:
                f.write(self.HEADER)
            classes, supers, problems = check_host.read_dump(d)
        self.assertEqual(problems, [])
        self.assertEqual(supers, {"Mgr": "NSObject"})
        return classes["Mgr"]

    def test_methods_properties_and_categories_read_as_encodings(self):
        m = self.methods()
        expected = {
            ("+", "sharedInstance"): "@@:",
            ("-", "onNewMsgArriving:NotifyFlag:"): "v@:@I",
            ("-", "canShowPushForContact:msgWrap:"): "B@:@@",
            ("-", "report:ofType:completion:"): "v@:@@@?",
            ("-", "end:at:room:"): "v@:@?dQ",
            ("-", "initWithFrame:"): "@@:{CGRect}",
            ("-", "fill:name:sel:cls:"): "v@:^@*:#",
            ("-", "count"): "q@:",
            ("-", "isLegacy"): "B@:",
            ("-", "title"): "@@:",
            ("-", "setTitle:"): "v@:@",
            ("-", "flags"): "I@:",
            ("-", "isOn"): "B@:",
            ("-", "setOn:"): "v@:B",
            ("-", "service"): "@@:",
        }
        self.assertEqual({k: m.get(k) for k in expected}, expected)
        self.assertNotIn(("-", "setFlags:"), m, "a read-only property has no setter")
        self.assertNotIn(("-", "m_nsName"), m, "instance variables are not methods")

    def test_a_method_of_a_superclass_in_the_dump_is_the_subclass_s(self):
        with tempfile.TemporaryDirectory() as d:
            with open(os.path.join(d, "Mgr.h"), "w") as f:
                f.write(self.HEADER)
            with open(os.path.join(d, "Sub.h"), "w") as f:
                f.write("@interface Sub : Mgr\n- (void)other;\n@end\n")
            classes, supers, _ = check_host.read_dump(d)
        entries = [("hook", "-", "Sub", "onNewMsgArriving:NotifyFlag:", ["v@:@I", "v@:@q"]),
                   ("hook", "-", "Sub", "absent", ["v@:"]),
                   ("send", "-", "Sub", "count", ["d@:"])]
        lines, skipped = check_host.check(entries, classes, supers)
        self.assertEqual(lines[:3], [
            "hook found     -[Sub onNewMsgArriving:NotifyFlag:]",
            "hook missing   -[Sub absent]",
            "send different -[Sub count]: host types q@:, sent as types d@:"])
        self.assertFalse(skipped, "a send that differs skips no hook")
        entries[2] = ("hook",) + entries[2][1:]
        self.assertTrue(check_host.check(entries, classes, supers)[1])


class Generated(unittest.TestCase):
    def test_the_list_is_what_the_code_generates(self):
        if not GENERATOR:
            self.skipTest("no quenby-host-interface given")
        p = subprocess.run([GENERATOR], capture_output=True, text=True, check=True)
        with open(INTERFACE, encoding="utf-8") as f:
            self.assertEqual(f.read(), p.stdout,
                             "scripts/host-interface.txt is stale: regenerate it with "
                             "quenby-host-interface > scripts/host-interface.txt")
        self.assertIn("hook " + ARRIVING + " v@:@I v@:@q\n", p.stdout)


if __name__ == "__main__":
    if len(sys.argv) > 1:
        GENERATOR = sys.argv.pop(1)
    unittest.main()
