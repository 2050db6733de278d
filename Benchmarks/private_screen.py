"""A private X server, the windows that programs map on it, and what a process takes."""

import ctypes
import os
import subprocess
import time
import zlib
from pathlib import Path

ROOT_COLOR = 0xFF00FF  # No program draws this color.
PATIENCE = 20.0


class Geometry(ctypes.Structure):
    _fields_ = [("root", ctypes.c_ulong), ("x", ctypes.c_int), ("y", ctypes.c_int),
                ("width", ctypes.c_uint), ("height", ctypes.c_uint), ("border", ctypes.c_uint),
                ("depth", ctypes.c_uint)]


class Screen:
    """The root window of the X server: the windows mapped on it, and the color of a pixel."""

    SCREEN_WIDTH, SCREEN_HEIGHT = 1600, 1000
    DATA_OFFSET = 16  # Of the pixels in an XImage.
    MAP_NOTIFY = 19
    SUBSTRUCTURE_NOTIFY = 1 << 19
    Z_PIXMAP = 2
    ALL_PLANES = (1 << 32) - 1

    def __init__(self, display, minimum_width):
        self.minimum_width = minimum_width
        self.x = ctypes.CDLL("libX11.so.6")
        for name in ("XOpenDisplay", "XDefaultRootWindow", "XGetImage", "XGetPixel"):
            getattr(self.x, name).restype = ctypes.c_void_p
        self.x.XDefaultRootWindow.restype = ctypes.c_ulong
        self.x.XGetPixel.restype = ctypes.c_ulong
        self.display = ctypes.c_void_p(self.x.XOpenDisplay(display.encode()))
        self.root = ctypes.c_ulong(self.x.XDefaultRootWindow(self.display))
        self.x.XSetWindowBackground(self.display, self.root, ctypes.c_ulong(ROOT_COLOR))
        self.x.XSelectInput(self.display, self.root, ctypes.c_long(self.SUBSTRUCTURE_NOTIFY))
        # A window may be gone before it is asked about.
        handler = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)
        self.ignore = handler(lambda display, error: 0)
        self.x.XSetErrorHandler(self.ignore)
        self.clear()

    def clear(self):
        self.x.XClearWindow(self.display, self.root)
        self.x.XSync(self.display, 1)

    def geometry(self, window):
        g = Geometry()
        fields = [ctypes.byref(g, getattr(Geometry, name).offset) for name, _ in Geometry._fields_]
        found = self.x.XGetGeometry(self.display, ctypes.c_ulong(window), *fields)
        return g if found else None

    def mapped(self):
        """The next mapped window of at least the minimum width, or none."""
        event = ctypes.create_string_buffer(192)
        while self.x.XPending(self.display):
            self.x.XNextEvent(self.display, event)
            if ctypes.c_int.from_buffer(event).value == self.MAP_NOTIFY:
                geometry = self.geometry(ctypes.c_ulong.from_buffer(event, 40).value)
                if geometry is not None and geometry.width >= self.minimum_width:
                    return geometry
        return None

    def pixel(self, x, y):
        image = ctypes.c_void_p(self.x.XGetImage(
            self.display, self.root, x, y, 1, 1, ctypes.c_ulong(self.ALL_PLANES), self.Z_PIXMAP))
        color = self.x.XGetPixel(image, 0, 0) & 0xFFFFFF
        self.x.XDestroyImage(image)
        return color

    def rows(self, g):
        """A checksum of each row of pixels of the window."""
        width = min(g.width, self.SCREEN_WIDTH - g.x)
        height = min(g.height, self.SCREEN_HEIGHT - g.y)
        image = self.x.XGetImage(self.display, self.root, g.x, g.y, width, height,
                                 ctypes.c_ulong(self.ALL_PLANES), self.Z_PIXMAP)
        if not image:
            return []
        data = ctypes.cast(image + self.DATA_OFFSET, ctypes.POINTER(ctypes.c_void_p))[0]
        pixels = ctypes.string_at(data, width * height * 4)
        self.x.XDestroyImage(ctypes.c_void_p(image))
        return [zlib.crc32(pixels[start:start + width * 4])
                for start in range(0, len(pixels), width * 4)]

    def is_painted(self, g):
        corners = ((g.x + 2, g.y + 2), (g.x + g.width - 3, g.y + g.height - 3))
        return all(self.pixel(x, y) != ROOT_COLOR for x, y in corners)


def proportional_memory(pid):
    for line in Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines():
        if line.startswith("Pss:"):
            return int(line.split()[1]) / 1024
    raise RuntimeError("the system does not report the memory of a process")


def until(condition, process, started):
    while time.monotonic() - started < PATIENCE:
        result = condition()
        if result:
            return result, time.monotonic() - started
        if process.poll() is not None:
            raise RuntimeError(f"{process.args[0]} ended before it showed its window")
        time.sleep(0.0002)
    raise RuntimeError(f"{process.args[0]} shows no window")


def start_server():
    reading, writing = os.pipe()
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(writing), "-screen", "0",
         f"{Screen.SCREEN_WIDTH}x{Screen.SCREEN_HEIGHT}x24", "-noreset"],
        pass_fds=[writing], stderr=subprocess.DEVNULL)
    os.close(writing)
    with os.fdopen(reading) as answer:
        return server, ":" + answer.readline().strip()
