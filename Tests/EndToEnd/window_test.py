"""What the tests of a whole program share: a private desktop, the program on it, its windows and
the places of their controls, and the contents of the mouse and the library.

A test file that uses it is called as FILE.py BINARIES [unittest options], where BINARIES is the
folder that holds the programs.
"""

import json
import os
import plistlib
import shutil
import subprocess
import sys
import tempfile
import unittest
from xml.etree import ElementTree

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "Tools"))

from desktop_session import DesktopSession, crop, frames, middle, wait_until  # noqa: E402

BINARIES = os.path.abspath(sys.argv.pop(1))
# {screen: {control: (x, y, width, height)}}
FRAMES = frames(os.path.join(os.path.dirname(BINARIES), "generated", "ArtworkFrames.h"))

DEMO = "NerinOptionDemo"
MAIN_SIZE = (1048, 720)
DIALOG_SIZE = (545, 155)
# The demonstration's panel stands to the right of the window.
DESKTOP_SIZE = (1900, 900)
PANEL = "The virtual mouse"
UNPLUG, PLUG_IN, SLOT_BUTTON = (90, 32), (254, 32), (172, 72)
# LIST_WIDTH is that of the list of profiles; the others apply to all lists.
LIST_WIDTH, ROW_HEIGHT, BORDER = 188, 28, 1
# In the foot of the window, away from all controls.
NOWHERE = (420, 684)

# What the background service reports as "type".
SLOT_CHANGED, REMOVED, ATTACHED = 1, 100, 101


def listSize(width, count):
    return width, count * ROW_HEIGHT + 2 * BORDER


class Mouse:
    """Reads the memory of a virtual mouse from a copy, so that no program waits for the reader."""

    def __init__(self, memory, folder):
        self._memory = memory
        self._copy = os.path.join(folder, "mouse-copy")
        self._home = os.path.join(folder, "nobody")
        os.makedirs(self._home)

    def _ask(self, *arguments):
        shutil.copyfile(self._memory, self._copy)
        answer = subprocess.run(
            [os.path.join(BINARIES, "nerinctl"), "--virtual", self._copy, "--json", *arguments],
            env={"HOME": self._home}, stdout=subprocess.PIPE, check=True)
        return json.loads(answer.stdout)

    def slots(self):
        return self._ask("slots")

    def activeSlot(self):
        return next(slot["slot"] for slot in self.slots() if slot["active"])

    def slot(self, number):
        held = self._ask("read", "--slot", str(number))
        del held["slot"]
        return held

    def memory(self):
        """All bytes of the mouse's memory."""
        with open(self._memory, "rb") as file:
            return file.read()

    def name(self, number):
        return self.slot(number)["name"]

    def mode(self, number):
        return self.slot(number)["mode"]


class ChildWindow:
    """A window over the main window, and the places of its controls."""

    def __init__(self, desktop, title, screen):
        self._desktop = desktop
        self._screen = screen
        self.id = desktop.window(title)
        # Once the window is active, the window manager has placed it.
        desktop.activate(self.id)

    def frame(self, control, *parts):
        """The parts are those that contain the control, from the outside in: each is its name in
        the screen around it and its own screen."""
        screen, left, top = self._screen, 0, 0
        for name, inner in parts:
            x, y, _, _ = FRAMES[screen][name]
            screen, left, top = inner, left + x, top + y
        x, y, width, height = FRAMES[screen][control]
        return x + left, y + top, width, height

    def click(self, control, *parts):
        self._desktop.click(self.id, *middle(self.frame(control, *parts)))

    def picture(self, control, *parts):
        return crop(self._desktop.picture(self.id), self.frame(control, *parts))


class WindowTest(unittest.TestCase):
    maxDiff = None
    # The windows that stay beside the main window.
    others = ()

    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory(prefix="nerin-window-"))
        self.desktop = self.enterContext(self.newDesktop())
        self.listener = self.desktop.listen()
        self.known = 0

    def newDesktop(self):
        return DesktopSession(self.folder, DESKTOP_SIZE)

    def support(self, program, *path):
        return os.path.join(self.desktop.support("com.corvex." + program), *path)

    def preferences(self, program):
        path = self.desktop.preferences("com.corvex." + program)
        if not os.path.exists(path):
            return {}
        with open(path, "rb") as file:
            return plistlib.load(file)

    def profiles(self, program):
        folder = self.support(program, "Profiles")
        return sorted(os.listdir(folder)) if os.path.isdir(folder) else []

    def assertTold(self, *messages):
        """The background service has received exactly these messages since the last call."""
        wait_until(lambda: len(self.received()) >= self.known + len(messages), 30,
                   "the messages %s" % (messages,))
        received = self.received()[self.known:]
        self.known += len(received)
        self.assertEqual(received, list(messages))

    def received(self):
        return [(message.object, message.userInfo) for message in self.listener.messages
                if message.member == "NerinSettingChange"]

    def assertEnds(self, process):
        wait_until(lambda: process.poll() is not None, 30, "the program to end")
        self.assertEqual((process.returncode, self.desktop.log(process)), (0, ""))

    def dialog(self):
        return self.desktop.window(self.title, size=DIALOG_SIZE)

    def answer(self, button, dialog="WarningNeedSave"):
        """Clicks a button of the dialog that is open or about to open. The name of the dialog gives
        the places of its buttons."""
        window = self.dialog()
        self.desktop.click(window, *middle(FRAMES[dialog][button]))
        wait_until(lambda: window not in [one.id for one in self.desktop.windows()], 30,
                   "the dialog to go")

    def isAsking(self):
        return any((window.width, window.height) == DIALOG_SIZE
                   for window in self.desktop.windows())

    # The main window, which is `self.window`.

    def click(self, control):
        self.desktop.click(self.window, *middle(FRAMES["MainView"][control]))

    def picture(self, *controls):
        picture = self.desktop.picture(self.window)
        return [crop(picture, FRAMES["MainView"][control]) for control in controls]

    def isRed(self, control):
        """Whether a control is mainly red: it is selected, or there is something to apply."""
        pixels = self.picture(control)[0].rgb
        red = sum(r > 30 and r > 2 * g and r > 2 * b
                  for r, g, b in zip(pixels[0::3], pixels[1::3], pixels[2::3]))
        return red * 6 > len(pixels)

    def waitForRed(self, control):
        wait_until(lambda: self.isRed(control), 30, "%s to be red" % control)

    def enterName(self, name):
        self.click("profileNameTxt")
        self.desktop.key("ctrl+a")
        self.desktop.type(name)
        self.desktop.key("Return")

    def linkProgram(self, entry):
        """Has the slot follow the program of this desktop entry."""
        self.click("linkProChk")
        self.click("linkProBtn")
        self.desktop.activate(self.desktop.window("Choose a program"))
        self.desktop.key("ctrl+o")
        panel = self.desktop.window("Open")
        self.desktop.activate(panel)
        self.desktop.type(entry)
        self.desktop.key("Return")
        # Includes the completion list of the field, which would swallow a click.
        self.waitForNoOther()

    def waitForNoOther(self, *children):
        kept = {self.window, *self.others, *(child.id for child in children)}
        wait_until(lambda: {one.id for one in self.desktop.windows()} == kept, 30,
                   "all other windows to go")


class DemoTest(WindowTest):
    title = DEMO

    def setUp(self):
        super().setUp()
        self.mouse = Mouse(self.support(DEMO, "mouse"), self.folder)
        self.start()

    def start(self):
        self.program = self.desktop.start(os.path.join(BINARIES, DEMO))
        self.window = self.desktop.window(DEMO, size=MAIN_SIZE)
        self.panel = self.desktop.window(PANEL)
        self.others = (self.panel,)
        self.standApart()
        wait_until(lambda: self.desktop.isHearing(self.program), 30, "the program on the bus")

    def standApart(self):
        # The panel gets its place once the mouse has been read.
        right = self.desktop.geometry(self.window)[0] + MAIN_SIZE[0]
        wait_until(lambda: self.desktop.geometry(self.panel)[0] >= right, 30,
                   "the panel to stand beside the window")

    def clickPanel(self, place):
        self.desktop.click(self.panel, *place)

    def chooseProfile(self, row, count):
        """Clicks a row, counted from 0, of the list of `count` profiles."""
        self.chooseRow(self.window, FRAMES["MainView"]["currProfileBtn"], row, count, LIST_WIDTH)

    def chooseRow(self, window, opener, row, count, width):
        """Opens the list of a button, whose frame this is, and clicks a row, counted from 0."""
        self.desktop.click(window, *middle(opener))
        listing = self.desktop.window(DEMO, size=listSize(width, count))
        self.desktop.click(listing, width // 2, BORDER + row * ROW_HEIGHT + ROW_HEIGHT // 2)
        wait_until(lambda: listing not in [one.id for one in self.desktop.windows()], 30,
                   "the list to go")

    def child(self, title, screen):
        return ChildWindow(self.desktop, title, screen)

    def macros(self):
        """The macros in the library: {name: [(key code, flag, delay)]}."""
        tree = ElementTree.parse(self.support(DEMO, "MenuInfo.xml"))
        return {item.get("title"): [tuple(int(key.get(one)) for one in
                                          ("keyCode", "keyFlag", "delay"))
                                    for key in item.findall("KeyItem")]
                for item in tree.find("MacroList")}

    def openMacroEditor(self):
        self.click("MacroSettingBtn")
        return self.child("Macro editor", "MacroView")

    def startRecording(self, editor):
        state = editor.picture("recordStateTxt")
        editor.click("recordBtn")
        wait_until(lambda: editor.picture("recordStateTxt") != state, 30, "the recording to begin")

    def stopRecording(self, editor):
        state = editor.picture("recordStateTxt")
        editor.click("stopBtn")
        wait_until(lambda: editor.picture("recordStateTxt") != state, 30, "the recording to end")

    def unplug(self):
        self.clickPanel(UNPLUG)
        self.dialog()
