"""A private desktop on a Wayland compositor: sway without a screen, a session bus, real clicks and
keys, and pictures of the screen. It sees nothing of the session that starts it, and leaves nothing
running.

A Wayland desktop knows neither lists nor tooltips as windows, so `windows` lacks them. Positions
and sizes are pixels at 1x.
"""

import json
import os
import socket
import struct
import subprocess
import time

from private_session import Picture, PrivateSession, Window, wait_until
from wayland_hands import Hands

# Windows have no frame and float; the pointer rests on the desktop.
CONFIGURATION = """
xwayland disable
output HEADLESS-1 resolution %dx%d scale %g position 0 0
default_border none
default_floating_border none
focus_follows_mouse no
for_window [app_id=".*"] floating enable
%s
"""
RUN_COMMAND, GET_TREE = 0, 4
# How long a screen without changes counts as quiet.
REST_SECONDS = 0.15


class WaylandSession(PrivateSession):
    """A private session on sway. `bindings` are lines for its configuration."""

    def __init__(self, folder, size=(1500, 900), scale=1, language="en_US.UTF-8", bindings=""):
        super().__init__(folder, size, scale, language)
        self._bindings = bindings
        self._hands = None

    # Beginning ----------------------------------------------------------------------------------

    def _startDisplay(self):
        configuration = os.path.join(self._runtime, "sway.conf")
        with open(configuration, "w", encoding="utf-8") as file:
            file.write(CONFIGURATION % (*(round(side * self.scale) for side in self.size),
                                        self.scale, self._bindings))
        self._control = os.path.join(self._runtime, "sway.sock")
        # It refuses to run as root, so it gets a user of its own.
        other = ["unshare", "--user", "--map-user=1000", "--map-group=1000", "--",
                 "setpriv", "--pdeathsig", "KILL", "--"] if os.getuid() == 0 else []
        compositor = self._spawn(
            other + ["sway", "-c", configuration],
            {**self.environment, "SWAYSOCK": self._control, "WLR_BACKENDS": "headless",
             "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"})

        def display():
            if compositor.poll() is not None:
                raise RuntimeError("sway did not start:\n" + self.log(compositor))
            names = [name for name in os.listdir(self._runtime)
                     if name.startswith("wayland-") and not name.endswith(".lock")]
            return os.path.exists(self._control) and names
        name = wait_until(display, 30, "the compositor")[0]
        self.environment.update(
            WAYLAND_DISPLAY=name, XDG_SESSION_TYPE="wayland", XDG_CURRENT_DESKTOP="sway",
            # The toolkit's part for Wayland and the drivers that it loads leak at their end, which
            # hides what is ours. The same programs are looked at on the X server.
            ASAN_OPTIONS=self.environment.get("ASAN_OPTIONS", "") + ":detect_leaks=0")
        # Before the programs start, so that they find a keyboard and a pointer.
        self._hands = Hands(os.path.join(self._runtime, name), self.size)

    def _end(self):
        if self._hands is not None:
            self._hands.close()
        super()._end()

    def _ask(self, kind, words=""):
        """What the compositor answers to a command or a question."""
        body = words.encode()
        with socket.socket(socket.AF_UNIX) as control:
            control.connect(self._control)
            control.sendall(b"i3-ipc" + struct.pack("=II", len(body), kind) + body)
            answer = control.makefile("rb")
            length, _ = struct.unpack("=II", answer.read(14)[6:])
            return json.loads(answer.read(length))

    def command(self, words):
        """Has the compositor do something, as its configuration would say it."""
        for result in self._ask(RUN_COMMAND, words):
            if not result["success"]:
                raise RuntimeError("%s: %s" % (words, result.get("error")))

    def addScreen(self, scale):
        """Adds a screen of the same size to the right of the first, in pixels at 1x. The hands do
        not reach it."""
        self.command("create_output")
        width, height = self.size
        self.command("output HEADLESS-2 resolution %dx%d scale %g position %d 0" % (
            round(width * scale), round(height * scale), scale, width))

    # Windows ------------------------------------------------------------------------------------

    def _nodes(self):
        waiting = [self._ask(GET_TREE)]
        while waiting:
            node = waiting.pop()
            waiting += node["nodes"] + node["floating_nodes"]
            if node.get("app_id") is not None:
                yield node

    def windows(self, process=None):
        """The windows of one program or of all that the session has started."""
        processes = {one.pid for one in ([process] if process else self._programs)}
        return [self._asWindow(node) for node in self._nodes()
                if node["visible"] and node["pid"] in processes]

    @staticmethod
    def _asWindow(node):
        place = node["rect"]
        return Window(node["id"], node["name"] or "", place["x"], place["y"], place["width"],
                      place["height"])

    def window(self, title, timeout=30, size=None):
        """As on any desktop, once the compositor has placed the window and it is drawn."""
        found = super().window(title, timeout, size)
        self.rest()
        return found

    def rest(self):
        """Waits until nothing on the screen moves. The toolkit loses a change of the focus that
        comes while the program still works off another one, faster than any hands are."""
        def isQuiet():
            before = self.picture()
            time.sleep(REST_SECONDS)
            return self.picture() == before
        wait_until(isQuiet, 30, "a quiet screen")

    def _node(self, window):
        for node in self._nodes():
            if node["id"] == window:
                return node
        raise RuntimeError("the window is gone")

    def applicationId(self, window):
        return self._node(window)["app_id"]

    def geometry(self, window):
        """(x, y, width, height)."""
        return self._asWindow(self._node(window))[2:]

    def activeWindow(self):
        """The id of the window that has the keyboard focus; None without one."""
        return next((node["id"] for node in self._nodes() if node["focused"]), None)

    def activate(self, window):
        """Gives a window the keyboard focus, as when the user switches between windows."""
        self.command("[con_id=%d] focus" % window)
        wait_until(lambda: self.activeWindow() == window, 30, "a window to get the keyboard")
        self.rest()

    def place(self, window, x, y):
        """Moves a window, as its user can; it cannot move itself."""
        self.command("[con_id=%d] move absolute position %d %d" % (window, x, y))
        wait_until(lambda: self.geometry(window)[:2] == (x, y), 30, "a window to move")

    def close(self, window):
        """Asks a window to close, as the desktop does."""
        self.command("[con_id=%d] kill" % window)

    # Hands --------------------------------------------------------------------------------------

    def move(self, window, x, y):
        left, top, _, _ = self.geometry(window)
        self._hands.move(left + x, top + y)

    def click(self, window, x, y, button=1):
        self.move(window, x, y)
        self._hands.button(button, True)
        self._hands.button(button, False)

    def drag(self, window, start, end):
        """Presses the button at one place of the window and releases it at another."""
        self.move(window, *start)
        self._hands.button(1, True)
        self.move(window, *end)
        self._hands.button(1, False)

    def strike(self, *steps):
        """Presses "+a", releases "-a" and pauses in seconds, all in one go. Returns how many
        seconds all of it took. Keys are named as for key()."""
        began = time.monotonic()
        for step in steps:
            if isinstance(step, str):
                self._hands.press(step[1:], step[0] == "+")
            else:
                time.sleep(step)
        return time.monotonic() - began

    def key(self, *keys):
        """Sends keys ("Tab", "ctrl+s") to the window with the keyboard focus."""
        for key in keys:
            self._hands.stroke(key)

    def type(self, text):
        self._hands.type(text)

    # Pictures -----------------------------------------------------------------------------------

    def picture(self, window=None):
        """The current picture of the whole screen or of one window, in pixels of the screen."""
        place = [] if window is None else ["-g", "%d,%d %dx%d" % tuple(self.geometry(window))]
        taken = subprocess.run(["grim", "-t", "ppm", *place, "-"], env=self.environment,
                               capture_output=True, check=True).stdout
        # "P6", the sides and 255, each followed by one byte of white space.
        kind, width, height, depth = taken[:40].split(maxsplit=4)[:4]
        if (kind, depth) != (b"P6", b"255"):
            raise RuntimeError("the screen has pixels of an unknown kind")
        width, height = int(width), int(height)
        return Picture(width, height, taken[-width * height * 3:])
