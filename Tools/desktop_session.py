"""A private desktop on an X server: a separate display, session bus and window manager, real clicks
and keys, and pictures of the screen. It sees nothing of the session that starts it, and leaves
nothing running.

Positions and sizes are pixels at 1x, like those of the masters, at every scale.
"""

import mmap
import os
import re
import struct
import time

from private_session import (Picture, PrivateSession, Window, crop, frames, middle, wait_until,
                             writePng)

__all__ = ["DesktopSession", "Picture", "Window", "crop", "frames", "middle", "wait_until",
           "writePng"]


class DesktopSession(PrivateSession):
    """A private session on an X server."""

    # Beginning ----------------------------------------------------------------------------------

    def _startDisplay(self):
        self.environment["QT_SCALE_FACTOR"] = str(self.scale)
        width, height = (round(side * self.scale) for side in self.size)
        # A pointer in the picture would hide what it points at.
        display = self._startServer(
            lambda end: ["Xvfb", "-displayfd", str(end), "-screen", "0",
                         "%dx%dx24" % (width, height), "-nolisten", "tcp", "-noreset", "-nocursor",
                         "-fbdir", self._runtime])
        self.environment["DISPLAY"] = ":" + display

    def _awaitDisplay(self):
        with open(os.path.join(self._runtime, "Xvfb_screen0"), "rb") as file:
            self._screen = mmap.mmap(file.fileno(), 0, prot=mmap.PROT_READ)
        self._spawn(["openbox", "--sm-disable"])
        wait_until(lambda: "window id" in self._run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"),
                   30, "the window manager")

    # Windows ------------------------------------------------------------------------------------

    def windows(self, process=None):
        """The visible windows, including menus, of one program or of all."""
        processes = [process] if process else self._programs
        ids = [window for owner in processes for window in self._run(
            "xdotool", "search", "--onlyvisible", "--pid", str(owner.pid)).split()]
        return [window for window in map(self._look, ids) if window]

    def windowsTitled(self, title):
        """The visible windows with this title, also those of programs that the session did not
        start itself."""
        ids = self._run("xdotool", "search", "--onlyvisible", "--name", "^%s$" % title).split()
        return [window for window in map(self._look, ids) if window]

    def _look(self, window):
        """What the display knows about a window; None if it is gone."""
        answer = self._run("xwininfo", "-int", "-id", str(window))
        title = re.search(r'Window id: \d+ "(.*)"$', answer, re.MULTILINE)
        place = [re.search(r"%s: +(-?\d+)" % key, answer) for key in (
            "Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")]
        if not all(place):
            return None
        return Window(int(window), title[1] if title else "",
                      *(round(int(side[1]) / self.scale) for side in place))

    def geometry(self, window):
        """(x, y, width, height)."""
        place = self._look(window)
        if place is None:
            raise RuntimeError("the window is gone")
        return place.x, place.y, place.width, place.height

    def activeWindow(self):
        """The id of the window that has the keyboard focus; None without one."""
        answer = self._run("xdotool", "getactivewindow").strip()
        return int(answer) if answer else None

    def activate(self, window):
        """Gives a window the keyboard focus, as when the user switches between windows."""
        self._run("xdotool", "windowactivate", str(window))
        wait_until(lambda: self.activeWindow() == window, 30, "a window to get the keyboard")

    # Hands --------------------------------------------------------------------------------------

    def move(self, window, x, y):
        self._run("xdotool", "mousemove", "--window", str(window), str(round(x * self.scale)),
                  str(round(y * self.scale)))

    def click(self, window, x, y, button=1):
        self.move(window, x, y)
        self._run("xdotool", "click", str(button))

    def drag(self, window, start, end):
        """Presses the button at one place of the window and releases it at another."""
        self.move(window, *start)
        self._run("xdotool", "mousedown", "1")
        self.move(window, *end)
        self._run("xdotool", "mouseup", "1")

    def strike(self, *steps):
        """Presses "+a", releases "-a" and pauses in seconds, all in one go. A pause begins when the
        display has handled the steps before it. Returns how many seconds all of it took. Keys are
        named as for key()."""
        words = []
        for step in steps:
            if isinstance(step, str):
                words += ["keydown" if step[0] == "+" else "keyup", step[1:]]
            else:
                # The display answers this only after it has handled the steps before.
                words += ["getmouselocation", "sleep", str(step)]
        began = time.monotonic()
        self._run("xdotool", *words)
        return time.monotonic() - began

    def key(self, *keys):
        """Sends keys ("Tab", "ctrl+s" or a key code) to the window with the keyboard focus."""
        self._run("xdotool", "key", *(str(key) for key in keys))

    def type(self, text):
        self._run("xdotool", "type", text)

    # Pictures -----------------------------------------------------------------------------------

    def picture(self, window=None):
        """The current picture of the whole screen or of one window."""
        size, _, _, _, width, height, _, order, _, _, _, bits, stride = struct.unpack_from(
            ">13I", self._screen)
        colors = struct.unpack_from(">I", self._screen, 76)[0]
        if (order, bits) != (0, 32):
            raise RuntimeError("the display has pixels of an unknown kind")
        x, y = 0, 0
        if window is not None:
            x, y, wide, high = (round(side * self.scale) for side in self.geometry(window))
            left, top = max(0, x), max(0, y)
            width, height = min(width, x + wide) - left, min(height, y + high) - top
            x, y = left, top
        rgb = bytearray(width * height * 3)
        # The header is followed by the color map, 12 bytes per color.
        start = size + colors * 12 + y * stride + x * 4
        for row in range(height):
            line = self._screen[start + row * stride:start + row * stride + width * 4]
            place = slice(row * width * 3, (row + 1) * width * 3)
            pixels = bytearray(width * 3)
            pixels[0::3], pixels[1::3], pixels[2::3] = line[2::4], line[1::4], line[0::4]
            rgb[place] = pixels
        return Picture(width, height, bytes(rgb))
