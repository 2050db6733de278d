"""What "cmake --install" puts where, and whether the programs work there.

Called as InstallTest.py SOURCE BUILD, BUILD being a finished build.
"""

import os
import pathlib
import re
import shutil
import stat
import struct
import subprocess
import sys
import tempfile
import unittest

BUILD = pathlib.Path(sys.argv.pop(2)).absolute()
SOURCE = pathlib.Path(sys.argv.pop(1)).absolute()
ID = "com.corvex.NerinOption"
PROGRAMS = ("NerinOption", "NerinOptionDemo", "nerin-companion", "nerinctl")


def run(*command, **options):
    return subprocess.run(list(map(str, command)), capture_output=True, text=True, check=False,
                          timeout=120, **options)


class Install(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="nerin-install-"))
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        done = run("cmake", "--install", BUILD, env={**os.environ, "DESTDIR": str(cls.folder)})
        assert done.returncode == 0, done.stderr
        # The prefix is this build's; the tree below works from any place.
        cls.prefix = next(cls.folder.glob("**/bin/nerinctl")).parent.parent
        cls.share = cls.prefix / "share"

    def runInstalled(self, program, *words):
        home = self.folder / "home"
        home.mkdir(exist_ok=True)
        environment = {"HOME": str(home), "PATH": os.environ["PATH"], "QT_QPA_PLATFORM": "offscreen"}
        return home, run(self.prefix / "bin" / program, *words, env=environment)

    def testNerinctlFindsTheDataThatWasInstalledWithIt(self):
        home, done = self.runInstalled("nerinctl", "--virtual", self.folder / "mouse", "status")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        copy = home / ".local/share" / ID / "MenuInfo.xml"
        self.assertEqual(copy.read_bytes(), (self.share / "NerinOption/MenuInfo.xml").read_bytes())
        _, done = self.runInstalled("nerinctl", "doctor")
        self.assertRegex(done.stdout, "udev rule +(/|not installed: copy %s/NerinOption/60-nerin.rules)"
                         % re.escape(str(self.share)))

    def testTheDataIsWhole(self):
        made = {path.relative_to(BUILD / "resources") for path in (BUILD / "resources").rglob("*")}
        there = {path.relative_to(self.share / "NerinOption")
                 for path in (self.share / "NerinOption").rglob("*")}
        self.assertEqual(there, made)
        self.assertEqual(len(list((self.share / "NerinOption/Help").glob("*.html"))), 15)

    def testDesktopEntriesAreValidAndStartWhatIsInstalled(self):
        entries = sorted((self.share / "applications").iterdir())
        entries += sorted(self.folder.glob("**/xdg/autostart/*.desktop"))
        self.assertEqual(len(entries), 3)
        done = run("desktop-file-validate", *entries)
        self.assertEqual((done.returncode, done.stdout + done.stderr), (0, ""))
        for entry in entries:
            for program in re.findall(r"^Exec=(\S+)", entry.read_text(), re.MULTILINE):
                self.assertIn(os.path.basename(program), PROGRAMS)

    def testTheDesktopEntrySpeaksTheLanguagesOfTheProgram(self):
        text = (self.share / "applications" / (ID + ".desktop")).read_text()
        codes = {path.stem for path in (SOURCE / "Resources/Texts").glob("*.po")}
        self.assertGreater(len(codes), 10)
        for key, count in (("Comment", 1), ("Name", 4)):
            for code in codes:
                self.assertEqual(len(re.findall(r"^%s\[%s\]=.*\w" % (key, code), text, re.MULTILINE)),
                                 count, (key, code))
        for action in re.search(r"^Actions=(.*)", text, re.MULTILINE)[1].strip(";").split(";"):
            self.assertIn("[Desktop Action %s]\n" % action, text)

    def testSoftwareCentersTakeTheDescription(self):
        done = run("appstreamcli", "validate", "--pedantic", "--no-net",
                   self.share / "metainfo" / (ID + ".metainfo.xml"))
        self.assertEqual(done.returncode, 0, done.stdout)
        text = (self.share / "metainfo" / (ID + ".metainfo.xml")).read_text()
        for width, height, name in re.findall(
                r'width="(\d+)" height="(\d+)">\S+/([a-z-]+\.png)</image>', text):
            picture = (SOURCE / "docs/screenshots" / name).read_bytes()
            self.assertEqual(struct.unpack(">II", picture[16:24]), (int(width), int(height)), name)
        self.assertGreaterEqual(text.count("<screenshot"), 4)

    def testTheIconIsThereInEverySize(self):
        icons = self.share / "icons/hicolor"
        sizes = set()
        for picture in icons.glob("*x*/apps/%s.png" % ID):
            side = int(picture.parts[-3].split("x")[0])
            self.assertEqual(struct.unpack(">II", picture.read_bytes()[16:24]), (side, side))
            sizes.add(side)
        self.assertEqual(sizes, {16, 22, 24, 32, 48, 64, 128, 256, 512})
        self.assertTrue((icons / "scalable/apps" / (ID + ".svg")).is_file())

    def testTheRuleIsForThisMouseAndTheUserAtTheSeat(self):
        rule = (self.prefix / "lib/udev/rules.d/60-nerin.rules").read_text()
        lines = [line for line in rule.splitlines() if not line.startswith("#")]
        self.assertEqual(lines, ['KERNEL=="hidraw*", SUBSYSTEM=="hidraw", ATTRS{idVendor}=="264a", '
                                 'ATTRS{idProduct}=="1001", TAG+="uaccess"'])

    def testNobodyElseMayChangeAFile(self):
        for path in self.prefix.rglob("*"):
            mode = path.lstat().st_mode
            if not stat.S_ISLNK(mode):
                self.assertEqual(mode & (stat.S_IWOTH | stat.S_ISUID | stat.S_ISGID), 0, path)

    def testEveryProgramHasAManualPageWithoutMistakes(self):
        for program in PROGRAMS:
            page = self.share / "man/man1" / (program + ".1")
            done = run("man", "--warnings", "--encoding=UTF-8", "--local-file", page, cwd=self.share / "man",
                       env={**os.environ, "MANWIDTH": "80", "LC_ALL": "C.UTF-8"})
            self.assertEqual((done.returncode, done.stderr), (0, ""), program)
            self.assertIn("SYNOPSIS", done.stdout)
            self.assertNotIn("@", done.stdout)

    def testTheManualNamesEveryCommand(self):
        text = (self.share / "man/man1/nerinctl.1").read_text().replace("\\-", "-")
        _, done = self.runInstalled("nerinctl", "--help")
        commands = re.findall(r"^  ([a-z]+) ", done.stdout.partition("Subcommands:")[2], re.MULTILINE)
        self.assertGreater(len(commands), 15)
        for command in commands:
            self.assertRegex(text, r"(?m)^\\fB%s( [a-z]+)?\\fR" % command)
        for option in ("--virtual", "--scenario", "--trace", "--json"):
            self.assertIn("\\fB%s\\fR" % option, text)


class Tests(unittest.TestCase):
    """A build without the tests needs none of their libraries."""

    def cacheWith(self, *options):
        with tempfile.TemporaryDirectory(prefix="nerin-configure-") as folder:
            done = run("cmake", "-G", "Ninja", "-S", SOURCE, "-B", folder, *options)
            cache = pathlib.Path(folder, "CMakeCache.txt").read_text()
            return done.returncode, cache

    def testWithoutTheOptionGoogleTestIsNotLookedFor(self):
        code, cache = self.cacheWith("-DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON")
        self.assertEqual(code, 0)
        self.assertNotRegex(cache, "(?m)^(GTest_DIR|umockdev_|benchmark_DIR)")

    def testWithTheOptionItIs(self):
        code, _ = self.cacheWith("-DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON", "-DNERIN_TESTS=ON")
        self.assertNotEqual(code, 0)


if __name__ == "__main__":
    unittest.main()
