"""Exchanges macro files between nerinctl and another program: Cocoa archives, which this test writes
and reads with Python's own library of property lists.

usage: MacroFilesTest.py NERINCTL
"""

import json
import os
import plistlib
import subprocess
import sys
import tempfile
import unittest
from plistlib import UID

TESTS = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(TESTS, "Kit", "Core"))

from property_lists import as_cocoa_xml  # noqa: E402

NERINCTL = None

MOST_NUMBER, LEAST_NUMBER = 2**31 - 1, -(2**31)

# Code, flag and delay of each command.
COMMANDS = [(0, 0, 120), (0, 1, 0), (56, 0, 65535), (56, 1, 1), (120, 3, 20), (120, 4, 0),
            (MOST_NUMBER, 2, LEAST_NUMBER)]


def described(name, *bases):
    return {"$classname": name, "$classes": [name, *bases, "NSObject"]}


def archive(name, commands, loopTime=3, isNoDisplay=False, list_class=("NSMutableArray", "NSArray")):
    """Lists the objects in Cocoa's order: each class follows its first object."""
    objects = ["$null"]

    def add(value):
        objects.append(value)
        return UID(len(objects) - 1)

    macro = {"loopTime": loopTime, "isNoDisplay": isNoDisplay}
    root = add(macro)
    listed = {}
    macro["keyInfoArr"] = add(listed)
    elements = []
    command_class = None
    for code, flag, delay in commands:
        command = {"keyCode": code, "keyFlag": flag, "delay": delay}
        elements.append(add(command))
        if command_class is None:
            command_class = add(described("MacroKeyInfo"))
        command["$class"] = command_class
    listed["NS.objects"] = elements
    listed["$class"] = add(described(*list_class))
    macro["nameStr"] = add(name) if name is not None else UID(0)
    macro["$class"] = add(described("MacroInfo"))
    return {"$version": 100000, "$archiver": "NSKeyedArchiver", "$top": {"root": root},
            "$objects": objects}


class Reader:
    """Follows the references of an archive and checks the class of each object."""

    def __init__(self, held):
        assert held["$archiver"] == "NSKeyedArchiver" and held["$version"] == 100000, held
        self.objects = held["$objects"]
        assert self.objects[0] == "$null", self.objects
        self.root = held["$top"]["root"]

    def at(self, reference):
        assert isinstance(reference, UID), reference
        return self.objects[reference.data]

    def ofClass(self, reference, name, *bases):
        held = self.at(reference)
        assert self.at(held["$class"]) == described(name, *bases), held
        return held

    def macro(self):
        macro = self.ofClass(self.root, "MacroInfo")
        listed = self.ofClass(macro["keyInfoArr"], "NSMutableArray", "NSArray")
        commands = [self.ofClass(one, "MacroKeyInfo") for one in listed["NS.objects"]]
        assert set(macro) == {"$class", "keyInfoArr", "nameStr", "loopTime", "isNoDisplay"}, macro
        return {
            "name": self.at(macro["nameStr"]),
            "loopTime": macro["loopTime"],
            "isNoDisplay": macro["isNoDisplay"],
            "commands": [(one["keyCode"], one["keyFlag"], one["delay"]) for one in commands],
        }


class MacroFiles(unittest.TestCase):
    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory(prefix="nerin-macros-"))

    def run_program(self, *arguments):
        return subprocess.run(
            [NERINCTL, "--virtual", os.path.join(self.folder, "mouse"), "--json", *arguments],
            env={"HOME": self.folder}, cwd=self.folder, stdout=subprocess.PIPE,
            stderr=subprocess.PIPE)

    def ask(self, *arguments):
        run = self.run_program(*arguments)
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        return json.loads(run.stdout)

    def write(self, name, content, form=plistlib.FMT_BINARY):
        with open(os.path.join(self.folder, name), "wb") as file:
            plistlib.dump(content, file, fmt=form)

    def shown(self, name):
        macro = self.ask("macros", "show", name)
        commands = [(one["keyCode"], one["keyFlag"], one["delay"]) for one in macro["events"]]
        return macro["loopTime"], commands

    def testOfAnotherProgramAreRead(self):
        self.write("Binary.mac", archive("Another name", COMMANDS))
        self.write("Xml.mac", as_cocoa_xml(archive("Another name", COMMANDS)), plistlib.FMT_XML)
        self.write("Fixed.mac", archive("Größe", COMMANDS, list_class=("NSArray",)))
        self.write("Nameless.mac", archive(None, COMMANDS))
        for name in ("Binary", "Xml", "Fixed", "Nameless"):
            self.ask("macros", "import", name + ".mac")
            self.assertEqual(self.shown(name), (3, COMMANDS))

    def testOfOursAreReadByAnotherProgram(self):
        self.write("First.mac", archive("x", COMMANDS))
        self.write("Empty.mac", archive("x", [], loopTime=LEAST_NUMBER))
        for name, loops, commands in (("First", 3, COMMANDS), ("Empty", LEAST_NUMBER, [])):
            self.ask("macros", "import", name + ".mac")
            self.ask("macros", "export", name, name + " again.mac")
            with open(os.path.join(self.folder, name + " again.mac"), "rb") as file:
                held = Reader(plistlib.load(file, fmt=plistlib.FMT_BINARY)).macro()
            self.assertEqual(held, {"name": name, "loopTime": loops, "isNoDisplay": False,
                                    "commands": commands})

    def testThatHoldNoMacroAreRefused(self):
        cycle = archive("x", COMMANDS)
        listed = next(one for one in cycle["$objects"] if "NS.objects" in one)
        listed["NS.objects"].append(cycle["$top"]["root"])
        song = archive("x", COMMANDS)
        for held in song["$objects"]:
            if isinstance(held, dict) and held.get("$classname") == "MacroInfo":
                held.update(described("SongInfo"))
        outside = archive("x", COMMANDS)
        outside["$top"]["root"] = UID(10000)
        for number, content in enumerate((cycle, song, outside, {}, [], "text")):
            name = "Broken%d.mac" % number
            self.write(name, content)
            run = self.run_program("macros", "import", name)
            self.assertGreater(run.returncode, 0, "%s ended the program: %s" % (name, run.stderr))
            self.assertIn(b"macro", run.stderr)
        self.assertEqual(self.ask("macros", "list"), [])


if __name__ == "__main__":
    NERINCTL = sys.argv.pop(1)
    unittest.main()
