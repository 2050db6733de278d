#!/usr/bin/python3
"""Takes the pictures of the help document: opens each window of the demonstration on a private
display, fills it with an example, and writes one compressed picture of each into
Resources/Help/pictures. Needs the program `pngquant` beside what the tour needs.

    /usr/bin/python3 -B Tools/help_pictures.py --build build/release
"""

import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import time

from desktop_session import DesktopSession, crop, middle, wait_until, writePng
from tour import DESKTOP_SIZE, Failure, Tour

# Few colors are enough for the flat windows, and a tenth of the bytes.
COLORS = 96
# What the list of programs shows, by the name of its desktop entry.
PROGRAMS = {"arena": "Arena", "editor": "Text Editor", "mail": "Mail", "music": "Music",
            "terminal": "Terminal"}


class HelpPictures(Tour):
    """The walk through the windows."""

    def __init__(self, session, build, folder, scratch):
        super().__init__(session, build, folder, scratch)
        self._child = None
        self._programs = os.path.join(session.home, ".local", "share", "applications")

    # Parts --------------------------------------------------------------------------------------

    def shoot(self, name, *windows):
        """Writes the part of the screen that these windows cover, the main one without any."""
        time.sleep(0.4)
        self.settle()
        places = [self.session.geometry(window) for window in windows or [self._mainId]]
        left, top = min(x for x, _, _, _ in places), min(y for _, y, _, _ in places)
        right = max(x + width for x, _, width, _ in places)
        bottom = max(y + height for _, y, _, height in places)
        scale = self.session.scale
        frame = [round(side * scale) for side in (left, top, right - left, bottom - top)]
        path = os.path.join(self.folder, name + ".png")
        writePng(path, crop(self.session.picture(), frame))
        self.pictures[name] = path

    def press(self, screen, control):
        self.session.click(self._child.id, *middle(self.screens[screen][control]))

    def pressIn(self, part, control):
        """Clicks a control of a part of the key assignment; all parts have the same place."""
        x, y = self.screens["KeyAssignView"]["tkeyView"][:2]
        left, top = middle(self.screens[part][control])
        self.session.click(self._child.id, x + left, y + top)

    def choose(self, action, words):
        """Opens a list and chooses the entry that begins with these words."""
        menu = self.opens(action, "a list")
        self.session.type(words)
        self.closes(menu, lambda: self.session.key("Return"), "the end of a list")

    def open(self, control):
        self._child = self.opens(lambda: self.click(control), "a window")
        time.sleep(0.3)

    def close(self):
        self.closes(self._child, lambda: self.session.key("Escape"), "the end of a window")
        self.rest()

    def keep(self, screen):
        self.closes(self._child, lambda: self.press(screen, "okBtn"), "the end of a window")
        self.rest()

    def install(self):
        os.makedirs(self._programs)
        for file, name in PROGRAMS.items():
            path = os.path.join(self._programs, file + ".desktop")
            with open(path, "w", encoding="utf-8") as entry:
                entry.write("[Desktop Entry]\nType=Application\nName=%s\nExec=/bin/true\n" % name)

    # The steps ----------------------------------------------------------------------------------

    def walk(self):
        self.install()
        # The programs of this machine are nobody else's.
        self.session.environment["XDG_DATA_DIRS"] = os.path.join(self.folder, "none")
        self.start()
        for step in (self.macros, self.mainWindow, self.assignment, self.advanced, self.lights,
                     self.changes, self.programs, self.question):
            step()
        self.session.stop(self._process)

    def macros(self):
        self.open("MacroSettingBtn")
        self.session.click(self._child.id, *middle(self.screens["MacroView"]["macroNameTxt"]))
        self.session.key("ctrl+a")
        self.session.type("Dash")
        self.press("MacroView", "newMacroBtn")
        self.press("MacroView", "recordBtn")
        time.sleep(0.5)
        shift = "50"
        self.session.strike("+" + shift, 0.12, "+w", 0.09, "-w", 0.06, "+w", 0.11, "-w", 0.08,
                            "+e", 0.07, "-e", 0.1, "-" + shift)
        self.press("MacroView", "stopBtn")
        self.session.move(self._child.id, 20, 20)
        self.shoot("macro-editor", self._child.id)
        tools = self.opens(lambda: self.press("MacroView", "toolsBtn"), "the tools")
        self.shoot("macro-tools", tools.id)
        self.closes(tools, lambda: self.session.key("Escape"), "the end of the tools")
        test = self.opens(lambda: self.press("MacroView", "testBtn"), "the test")
        time.sleep(1.5)
        self.shoot("macro-test", test.id)
        self.closes(test, lambda: self.session.key("Escape"), "the end of the test")
        self.keep("MacroView")

    def mainWindow(self):
        self.click("profile3Btn")
        wait_until(lambda: self.mouse.activeSlot() == 3, 20, "slot 3 on the mouse")
        self.showsLine("rightBtn1", "rightBtnTag1")
        self.shoot("main-window")
        self.rest()

    def assignment(self):
        kind = self.screens["KeyAssignView"]["comSelBtn"]

        def chooseKind(words):
            self.choose(lambda: self.session.click(self._child.id, *middle(kind)), words)

        self.open("rightBtn2")
        chooseKind("Macro")
        self.choose(lambda: self.pressIn("SubTKeyView", "tkeySelBtn"), "Dash")
        self.shoot("assign-macro", self._child.id)
        chooseKind("DPI")
        self.choose(lambda: self.pressIn("SubSensitivityView", "selBtn"), "Set")
        self.shoot("assign-dpi", self._child.id)
        chooseKind("Launch")
        self.shoot("assign-program", self._child.id)
        chooseKind("Mouse")
        self.pressIn("SubSingleKeyView", "keybordChk")
        self.session.key("q")
        self.shoot("assign-key", self._child.id)
        self.keep("KeyAssignView")

    def advanced(self):
        self.open("preformanceBtn")
        self.shoot("advanced", self._child.id)
        self.close()

    def lights(self):
        self.open("lightOptionBtn")
        self.press("LightOptionView", "logoLightBtn")
        x, y, width, height = self.screens["LightOptionView"]["colorFieldView"]
        self.session.click(self._child.id, x + width * 11 // 20, y + height // 8)
        self.shoot("led", self._child.id)
        self.keep("LightOptionView")

    def changes(self):
        menu = self.opens(lambda: self.session.click(
            self._mainId, *middle(self.frame("applyBtn")), button=3), "the list of changes")
        self.shoot("changes", menu.id)
        self.closes(menu, lambda: self.session.key("Escape"), "the end of the list")

    def programs(self):
        panel = self.opens(lambda: self.click("linkProBtn"), "the list of programs")
        self.shoot("programs", panel.id)
        self.closes(panel, lambda: self.session.key("Escape"), "the end of the list")

    def question(self):
        dialog = self.opens(lambda: self.click("profile5Btn"), "the question about the edits")
        self.shoot("question", dialog.id)
        self.closes(dialog, lambda: self.session.key("Escape"), "the end of the question")


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--build", default="build/release", help="where the programs were built")
    parser.add_argument("--folder", help="where the pictures go",
                        default=os.path.join(here, "..", "Resources", "Help", "pictures"))
    options = parser.parse_args()
    if shutil.which("pngquant") is None:
        print("help_pictures: the package pngquant is missing", file=sys.stderr)
        return 1
    with tempfile.TemporaryDirectory() as scratch:
        folder = os.path.join(scratch, "walk")
        os.makedirs(os.path.join(folder, "screenshots"))
        with DesktopSession(folder, DESKTOP_SIZE) as session:
            pictures = HelpPictures(session, os.path.abspath(options.build), folder, scratch)
            try:
                pictures.walk()
            except (Failure, OSError, RuntimeError) as error:
                failed = os.path.join(tempfile.gettempdir(), "help-pictures-failed.png")
                writePng(failed, session.picture())
                print("help_pictures: %s\nThe last it saw is in %s." % (error, failed),
                      file=sys.stderr)
                return 1
        os.makedirs(options.folder, exist_ok=True)
        for name, path in pictures.pictures.items():
            subprocess.run(["pngquant", "--force", "--strip", "--speed", "1", "--output",
                            os.path.join(options.folder, name + ".png"), str(COLORS), path],
                           check=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
