"""Walks the demonstration through the main job on a private display, with real clicks and keys:
choose a slot, name a profile, set the LED mode, link a program, apply, find it again. Writes
numbered pictures and a list of what reached the mouse, and fails if a step does not have its
effect.
"""

import argparse
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time

from desktop_session import DesktopSession, frames, middle, wait_until, writePng
from saved_profiles import linkedPrograms

TITLE = "NerinOptionDemo"
PANEL_TITLE = "The virtual mouse"
# Leaves room beside the window for the panel that plays the user's hands.
DESKTOP_SIZE = (1800, 900)
# In the foot of the window, away from all controls.
NOWHERE = (420, 684)
SETTLED_SECONDS = 0.25
# Only the words of a caption are this bright.
CAPTION_BRIGHTNESS = 220
# The minimum number of red pixels in a line, and the gap between a line and its marker.
LINE_REDNESS = 40
LINE_GAP = 4
TOOLTIP_SECONDS = 1.2
# The pictures of the README by the names of the steps.
README_PICTURES = {"caption": "main-window", "profile-list": "profile-list",
                   "unsaved": "unsaved-edits"}


class Failure(Exception):
    """A step did not have its effect."""


class Mouse:
    """Reads the memory of the virtual mouse from a copy, because the program has it locked."""

    def __init__(self, program, memory, folder):
        self._program = program
        self._memory = memory
        self._copy = os.path.join(folder, "mouse")
        # nerinctl must not touch the program's library.
        self._environment = {"HOME": folder, "PATH": os.environ["PATH"]}

    def ask(self, *arguments):
        shutil.copyfile(self._memory, self._copy)
        answer = subprocess.run([self._program, "--virtual", self._copy, *arguments],
                                env=self._environment, capture_output=True, text=True, check=False)
        if answer.returncode != 0:
            raise Failure("nerinctl %s: %s" % (" ".join(arguments), answer.stderr.strip()))
        return answer.stdout

    def slot(self, number):
        return json.loads(self.ask("--json", "read", "--slot", str(number)))

    def activeSlot(self):
        return next(one["slot"] for one in json.loads(self.ask("--json", "slots"))
                    if one["active"])

    def bytes(self):
        with open(self._memory, "rb") as file:
            return file.read()

    def facts(self):
        """Everything that can change, as {name: value}."""
        facts = {"active slot": str(self.activeSlot())}
        for number in range(1, 11):
            slot = self.slot(number)
            about = "slot %d, " % number
            for key in ("name", "mode", "rate", "lift", "activeLevel"):
                facts[about + key] = str(slot[key])
            for index, zone in enumerate(slot["zones"], 1):
                facts["%szone %d" % (about, index)] = " ".join(str(one) for one in zone.values())
            for index, level in enumerate(slot["levels"], 1):
                facts["%sDPI level %d" % (about, index)] = "%(x)s x %(y)s" % level
            for button in slot["buttons"]:
                facts[about + button["button"]] = button["function"]
        return facts


class Tour:
    """The walk. Each step clicks or types, waits for the effect, and takes a picture."""

    def __init__(self, session, build, folder, scratch):
        self.session = session
        self.folder = folder
        self.program = os.path.join(build, "bin", "NerinOptionDemo")
        self.screens = frames(os.path.join(build, "generated", "ArtworkFrames.h"))
        self.support = session.support("com.corvex.NerinOptionDemo")
        self.mouse = Mouse(os.path.join(build, "bin", "nerinctl"),
                           os.path.join(self.support, "mouse"), scratch)
        self.listener = session.listen()
        self.pictures = {}
        self.log = []
        self._reported = 0
        self._bytes = None
        self._facts = {}
        self._mainId = self._panelId = None
        self._process = None
        self._linked = None

    # Parts of the steps -------------------------------------------------------------------------

    def frame(self, control):
        """The frame, in the main window, of one of its controls or of a control of its maps."""
        for screen, map in (("MainView", None), ("MainViewSub1", "subView1"),
                            ("MainViewSub2", "subView2")):
            if control in self.screens[screen]:
                x, y, width, height = self.screens[screen][control]
                left, top = self.screens["MainView"][map][:2] if map else (0, 0)
                return x + left, y + top, width, height
        raise KeyError(control)

    def point(self, control):
        self.session.move(self._mainId, *middle(self.frame(control)))

    def click(self, control):
        self.session.click(self._mainId, *middle(self.frame(control)))

    def rest(self):
        self.session.move(self._mainId, *NOWHERE)

    def look(self, *places):
        """The pixels of these controls or frames of the main window, or of all of it."""
        picture = self.session.picture(self._mainId)
        if not places:
            return picture.rgb
        scale = self.session.scale
        seen = []
        for place in places:
            frame = self.frame(place) if isinstance(place, str) else place
            x, y, width, height = (round(side * scale) for side in frame)
            for row in range(y, y + height):
                start = (row * picture.width + x) * 3
                seen.append(picture.rgb[start:start + width * 3])
        return b"".join(seen)

    def between(self, caption, marker):
        """The frame of the line between a caption and the marker to its left."""
        captionX, captionY, _, captionHeight = self.frame(caption)
        x, y, width, height = self.frame(marker)
        left, above = x + width + LINE_GAP, min(y, captionY)
        return (left, above, captionX - LINE_GAP - left,
                max(y + height, captionY + captionHeight) - above)

    def showsLine(self, caption, marker):
        """Points at the caption and waits until its line is red."""
        line = self.between(caption, marker)
        before = self.redness(line)
        self.point(caption)
        wait_until(lambda: self.redness(line) > before + LINE_REDNESS, 20,
                   "the line from the caption %s to the marker %s" % (caption, marker))
        # Another move delays the tooltip a little.
        x, y = middle(self.frame(caption))
        self.session.move(self._mainId, x + 1, y)

    def redness(self, frame):
        """How many pixels of a frame have the accent color."""
        rgb = self.look(frame)
        return sum(red > 150 and green < 80 and blue < 80 for red, green, blue in
                   zip(rgb[0::3], rgb[1::3], rgb[2::3]))

    def maximumBrightness(self, control):
        """The maximum brightness of a control's pixels, 0..255."""
        return max(self.look(control))

    def settle(self):
        """Waits until the picture stops changing."""
        last, since = self.look(), time.monotonic()

        def still():
            nonlocal last, since
            now = self.look()
            if now != last:
                last, since = now, time.monotonic()
            return time.monotonic() - since >= SETTLED_SECONDS

        wait_until(still, 20, "the picture to stop changing")

    def changes(self, action, *controls, what):
        """Performs the action and waits until these controls look different."""
        before = self.look(*controls)
        action()
        wait_until(lambda: self.look(*controls) != before, 20, what)

    def opens(self, action, what):
        """Performs the action and waits for the window that it opens."""
        known = {window.id for window in self.session.windows(self._process)}

        def new():
            return [window for window in self.session.windows(self._process)
                    if window.id not in known]

        action()
        return wait_until(new, 20, what)[0]

    def closes(self, window, action, what):
        action()
        wait_until(lambda: window.id not in
                   {one.id for one in self.session.windows(self._process)}, 20, what)

    def take(self, name, whole=False):
        """Takes a picture of the window or the whole screen and notes what reached the mouse."""
        self.settle()
        file = "%02d-%s.png" % (len(self.pictures) + 1, name)
        path = os.path.join(self.folder, "screenshots", file)
        writePng(path, self.session.picture(None if whole else self._mainId))
        self.pictures[name] = path
        self.note(file)

    def note(self, step):
        lines = []
        memory = self.mouse.bytes()
        if memory != self._bytes:
            facts = self.mouse.facts()
            lines += ["  %s: %s -> %s" % (what, self._facts[what], words)
                      for what, words in facts.items()
                      if what in self._facts and self._facts[what] != words]
            self._bytes, self._facts = memory, facts
        for message in self.listener.messages[self._reported:]:
            lines.append("  to the service: %s \"%s\" %s" % (
                message.member, message.object, message.userInfo or ""))
        self._reported = len(self.listener.messages)
        self.log += [step] + (lines or ["  nothing"])

    def library(self):
        return linkedPrograms(self.support)

    def start(self):
        self._process = self.session.start(self.program)
        self._mainId = self.session.window(TITLE)
        self._panelId = self.session.window(PANEL_TITLE)
        self.rest()
        # The captions appear once the slot has been read.
        wait_until(lambda: self.maximumBrightness("leftClickBtn") > CAPTION_BRIGHTNESS, 30,
                   "the captions of the slot that is read at the start")
        self.settle()

    def quit(self, action):
        action()
        wait_until(lambda: self._process.poll() is not None, 20, "the end of the program")
        if self._process.returncode != 0:
            raise Failure("exit code %d:\n%s" % (self._process.returncode,
                                                 self.session.log(self._process)))

    # The steps ----------------------------------------------------------------------------------

    def walk(self):
        for step in (self.beginning, self.pointing, self.choosingASlot, self.namingAProfile,
                     self.settingTheMode, self.linkingAProgram, self.applying,
                     self.choosingAProfile, self.leavingEdits, self.openingWindows,
                     self.unplugging, self.ending):
            step()

    def beginning(self):
        self.start()
        self._bytes, self._facts = self.mouse.bytes(), self.mouse.facts()
        self.take("start")

    def pointing(self):
        self.showsLine("rightBtn1", "rightBtnTag1")
        self.take("caption")
        self.changes(lambda: self.click("goRightBtn"), "subView2", what="the side view")
        self.showsLine("leftBtn1", "leftBtnTag1")
        self.take("side-view")
        self.rest()
        # The clicked tab has the keyboard focus.
        self.changes(lambda: self.session.key("Left"), "subView1", what="the top view")

    def choosingASlot(self):
        self.click("profile3Btn")
        self.rest()
        wait_until(lambda: self.mouse.activeSlot() == 3, 20, "slot 3 on the mouse")
        self.take("another-slot")

    def namingAProfile(self):
        self.changes(lambda: self.click("profileNewBtn"), "profileNameTxt", "applyBtn",
                     what="the new profile's name")
        self.rest()
        self.take("new-profile")
        self.click("profileNameTxt")
        self.session.key("ctrl+a")
        self.session.type("Arena")
        self.take("typing-a-name")
        self.session.key("Return")
        wait_until(lambda: self.mouse.slot(3)["name"] == "Arena", 20, "the name on the mouse")
        wait_until(lambda: "Arena" in self.library(), 20, "the name in the library")
        self.rest()
        self.take("renamed")

    def settingTheMode(self):
        dialog = self.opens(lambda: self.click("battleModeBtn"), "the question about the mode")
        self.take("battle-mode-dialog")
        self.closes(dialog, lambda: self.session.key("Return"), "the end of the question")
        wait_until(lambda: self.mouse.slot(3)["mode"] == "battle", 20, "the mode on the mouse")
        self.rest()
        self.take("battle-mode")

    def linkingAProgram(self):
        program = os.path.join(self.session.home, "Games", "Arena.desktop")
        os.makedirs(os.path.dirname(program))
        with open(program, "w", encoding="utf-8") as file:
            file.write("[Desktop Entry]\nType=Application\nName=Arena\nExec=/bin/true\n")
        self.opens(lambda: self.click("linkProBtn"), "the list of programs")
        self.settle()
        self.take("choosing-a-program")
        panel = self.opens(lambda: self.session.key("ctrl+o"), "the file panel")
        self.settle()
        self.session.type(program)
        self.closes(panel, lambda: self.session.key("Return"), "the end of the file panel")
        self.changes(lambda: self.click("linkProChk"), "linkProChk", what="the check mark")
        self.point("linkProBtn")
        time.sleep(TOOLTIP_SECONDS)
        self.take("linked-program")
        self.rest()
        self._linked = program

    def applying(self):
        self.click("applyBtn")
        self.rest()
        wait_until(lambda: self.library().get("Arena") == self._linked, 20,
                   "the link in the library")
        self.take("applied")
        self.click("profileSaveBtn")
        self.session.key("ctrl+s")
        self.rest()
        wait_until(lambda: "Arena_1" in self.library(), 20, "the duplicate in the library")
        wait_until(lambda: self.mouse.slot(3)["name"] == "Arena_1", 20,
                   "the duplicate on the mouse")
        self.take("duplicated-with-keys")

    def choosingAProfile(self):
        self.click("profile5Btn")
        wait_until(lambda: self.mouse.activeSlot() == 5, 20, "slot 5 on the mouse")
        self.settle()
        menu = self.opens(lambda: self.click("currProfileBtn"), "the list of profiles")
        self.session.type("Arena_")
        self.take("profile-list")
        self.closes(menu, lambda: self.session.key("Return"), "the end of the list")
        self.rest()
        wait_until(lambda: self.mouse.slot(5)["mode"] == "battle", 20,
                   "the chosen profile's mode on the mouse")
        self.take("profile-chosen")

    def leavingEdits(self):
        dialog = self.opens(lambda: self.click("profile3Btn"), "the question about the edits")
        self.take("unsaved")
        self.closes(dialog, lambda: self.session.key("Return"), "the end of the question")
        wait_until(lambda: self.mouse.activeSlot() == 3, 20, "slot 3 on the mouse")
        wait_until(lambda: self.mouse.slot(5)["name"] == "Arena_1", 20, "slot 5 applied")
        self.rest()
        self.take("applied-on-the-way")
        dialog = self.opens(lambda: self.click("reDefBtn"), "the question about the reset")
        self.take("reset-dialog")
        self.closes(dialog, lambda: self.session.key("Escape"), "the end of the question")

    def openingWindows(self):
        for control, name in (("rightBtn2", "key-assignment"), ("MacroSettingBtn", "macros"),
                              ("preformanceBtn", "advanced"), ("lightOptionBtn", "leds")):
            child = self.opens(lambda: self.click(control), "the window " + name)
            self.take("child-window-" + name)
            self.closes(child, lambda: self.session.key("Escape"), "the end of the window " + name)
        menu = self.opens(lambda: self.click("menuBtn"), "the application menu")
        self.session.key("Down")
        self.take("application-menu")
        self.closes(menu, lambda: self.session.key("Escape"), "the end of the menu")
        self.rest()
        self.changes(lambda: self.session.key("Tab"), what="the focus ring")
        self.take("focus-ring")

    def unplugging(self):
        # The panel has two rows of buttons: Unplug and Plug in, then the slot button.
        def press(x, y):
            self.session.click(self._panelId, x, y)

        dialog = self.opens(lambda: press(90, 32), "the question whether the mouse comes back")
        self.take("unplugged", whole=True)
        press(250, 32)
        self.settle()
        self.session.click(dialog.id, *middle(self.screens["WarningNoDevice"]["okBtn"]))
        wait_until(lambda: dialog.id not in {one.id for one in
                                             self.session.windows(self._process)},
                   20, "the end of the question")
        self.settle()
        press(170, 72)
        wait_until(lambda: self.mouse.activeSlot() == 4, 20, "slot 4 on the mouse")
        self.take("slot-of-the-mouse", whole=True)

    def ending(self):
        kept = "profileNameTxt", "currProfileBtn", "normalModeBtn", "battleModeBtn", "linkProChk"
        self.click("profile3Btn")
        wait_until(lambda: self.mouse.activeSlot() == 3, 20, "slot 3 on the mouse")
        self.rest()
        self.settle()
        seen = self.look(*kept)
        self.quit(lambda: self.click("closeBtn"))
        self.note("quit")
        self.start()
        self.take("started-again")
        if self.look(*kept) != seen:
            raise Failure("slot 3 does not look as it did before the program was ended")
        self.quit(lambda: self.click("cancelBtn"))

    # The report ---------------------------------------------------------------------------------

    def report(self):
        path = os.path.join(self.folder, "mouse.txt")
        with open(path, "w", encoding="utf-8") as file:
            file.write("What each step of the tour changed in the memory of the virtual mouse, "
                       "and what the\nprogram told the background service.\n\n")
            file.write("\n".join(self.log) + "\n\nWhat the mouse holds at the end.\n\n")
            file.write(self.mouse.ask("slots"))
            for number in (3, 5):
                file.write("\n" + self.mouse.ask("read", "--slot", str(number)))
            file.write("\nWhat the library holds at the end.\n\n")
            for name, linked in sorted(self.library().items()):
                file.write("%s%s\n" % (name, "  linked to " + linked if linked else ""))
        return path


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", default="build/release", help="where the programs were built")
    parser.add_argument("--folder", default="build/run", help="where the pictures go")
    parser.add_argument("--scale", type=float, default=1, help="pixels of the screen for one")
    parser.add_argument("--readme", help="copy the pictures of the README into this folder")
    options = parser.parse_args()
    build, folder = os.path.abspath(options.build), os.path.abspath(options.folder)
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(os.path.join(folder, "screenshots"))
    with (tempfile.TemporaryDirectory() as scratch,
          DesktopSession(folder, DESKTOP_SIZE, options.scale) as session):
        tour = Tour(session, build, folder, scratch)
        try:
            tour.walk()
        except (Failure, OSError, RuntimeError) as error:
            writePng(os.path.join(folder, "screenshots", "failed.png"), session.picture())
            print("The tour failed: %s\nThe last it saw is in %s." % (
                error, os.path.join(folder, "screenshots", "failed.png")), file=sys.stderr)
            return 1
        log = tour.report()
    if options.readme:
        os.makedirs(options.readme, exist_ok=True)
        for step, name in README_PICTURES.items():
            shutil.copyfile(tour.pictures[step], os.path.join(options.readme, name + ".png"))
    print("%d pictures: %s\nWhat reached the mouse: %s\nThe program's files: %s" % (
        len(tour.pictures), os.path.join(folder, "screenshots"), log, session.home))
    return 0


if __name__ == "__main__":
    sys.exit(main())
