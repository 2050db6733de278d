"""A keyboard and a pointer for a Wayland compositor that takes virtual ones, as those of wlroots do.
It speaks the protocol itself: a message is the object's number, its length with the number of the
request, and the arguments, all in words of the machine's byte order.
"""

import array
import os
import socket
import struct
import time

DISPLAY = 1
SYNC, GET_REGISTRY = 0, 1
ERROR, DONE, GLOBAL = 0, 0, 0
BIND = 0
# The only request of either manager that is used.
CREATE = 0
MOTION_ABSOLUTE, BUTTON, FRAME = 1, 2, 4
KEYMAP, KEY, MODIFIERS = 0, 1, 2
XKB_TEXT = 1

BUTTONS = {1: 0x110, 2: 0x112, 3: 0x111}

# The compositor resolves the names with the keyboard files of the machine.
LAYOUT = b"""xkb_keymap {
  xkb_keycodes { include "evdev+aliases(qwerty)" };
  xkb_types { include "complete" };
  xkb_compat { include "complete" };
  xkb_symbols { include "pc+us+inet(evdev)" };
};
\0"""

# Names of keys as an X server has them, with the kernel's codes of a US keyboard.
KEYS = {name: code for row, first in (("1234567890", 2), ("qwertyuiop", 16), ("asdfghjkl", 30),
                                      ("zxcvbnm", 44))
        for code, name in enumerate(row, first)}
KEYS.update({
    "Escape": 1, "minus": 12, "equal": 13, "BackSpace": 14, "Tab": 15, "Return": 28,
    "Control_L": 29, "semicolon": 39, "apostrophe": 40, "grave": 41, "Shift_L": 42,
    "backslash": 43, "comma": 51, "period": 52, "slash": 53, "Shift_R": 54, "Alt_L": 56,
    "space": 57, "Caps_Lock": 58, "F1": 59, "F2": 60, "F3": 61, "F4": 62, "Control_R": 97,
    "Alt_R": 100, "Home": 102, "Up": 103, "Left": 105, "Right": 106, "End": 107, "Down": 108,
    "Delete": 111, "Super_L": 125})
# What a held key adds to the modifiers. The compositor does not work it out from virtual keys.
MODIFIER_BITS = {KEYS["Shift_L"]: 1, KEYS["Shift_R"]: 1, KEYS["Control_L"]: 4,
                 KEYS["Control_R"]: 4, KEYS["Alt_L"]: 8, KEYS["Alt_R"]: 8, KEYS["Super_L"]: 64}
PREFIXES = {"ctrl": "Control_L", "shift": "Shift_L", "alt": "Alt_L", "super": "Super_L"}
SIGNS = {" ": "space", "-": "minus", "=": "equal", ";": "semicolon", "'": "apostrophe",
         "`": "grave", "\\": "backslash", ",": "comma", ".": "period", "/": "slash"}
SHIFTED_SIGNS = {"_": "minus", "+": "equal", ":": "semicolon", "?": "slash", "!": "1", "#": "3"}


class Connection:
    def __init__(self, path):
        self._socket = socket.socket(socket.AF_UNIX)
        self._socket.connect(path)
        self._last = DISPLAY
        self._unread = b""

    def new(self):
        self._last += 1
        return self._last

    def send(self, target, request, *words, descriptor=None):
        """Sends a request with these words, each a number or bytes ready to be sent."""
        body = b"".join(word if isinstance(word, bytes) else struct.pack("=I", word)
                        for word in words)
        message = struct.pack("=II", target, (len(body) + 8) << 16 | request) + body
        rights = [] if descriptor is None else [
            (socket.SOL_SOCKET, socket.SCM_RIGHTS, array.array("i", [descriptor]))]
        self._socket.sendmsg([message], rights)

    def events(self):
        """Waits for the answers to all requests. Returns (object, event, body) of each."""
        callback = self.new()
        self.send(DISPLAY, SYNC, callback)
        found = []
        while True:
            target, event, body = self._next()
            if (target, event) == (callback, DONE):
                return found
            if (target, event) == (DISPLAY, ERROR):
                raise RuntimeError("the compositor refuses a request: %r" % body)
            found.append((target, event, body))

    def _next(self):
        target, second = struct.unpack("=II", self._read(8))
        return target, second & 0xFFFF, self._read((second >> 16) - 8)

    def _read(self, count):
        while len(self._unread) < count:
            more = self._socket.recv(65536)
            if not more:
                raise RuntimeError("the compositor has closed the connection")
            self._unread += more
        taken, self._unread = self._unread[:count], self._unread[count:]
        return taken

    def close(self):
        self._socket.close()


def packedText(text):
    letters = text.encode() + b"\0"
    return struct.pack("=I", len(letters)) + letters + b"\0" * (-len(letters) % 4)


class Hands:
    """`path` is the compositor's socket, `size` that of the whole desktop in pixels at 1x."""

    def __init__(self, path, size):
        self._size = size
        self._connection = Connection(path)
        self._held = set()
        self._began = time.monotonic()
        registry = self._connection.new()
        self._connection.send(DISPLAY, GET_REGISTRY, registry)
        offered = {}
        for target, event, body in self._connection.events():
            if (target, event) == (registry, GLOBAL):
                number, length = struct.unpack_from("=II", body)
                offered[body[8:8 + length - 1].decode()] = number

        def bind(name):
            made = self._connection.new()
            self._connection.send(registry, BIND, offered[name], packedText(name), 1, made)
            return made

        seat = bind("wl_seat")

        def create(manager):
            giver = bind(manager)
            made = self._connection.new()
            self._connection.send(giver, CREATE, seat, made)
            return made

        # A number must be used before the next is taken.
        self._pointer = create("zwlr_virtual_pointer_manager_v1")
        self._keyboard = create("zwp_virtual_keyboard_manager_v1")
        layout = os.memfd_create("layout")
        os.write(layout, LAYOUT)
        self._connection.send(self._keyboard, KEYMAP, XKB_TEXT, len(LAYOUT), descriptor=layout)
        os.close(layout)
        self._connection.events()

    def close(self):
        self._connection.close()

    def settle(self):
        """Returns when the compositor has handled everything so far."""
        self._connection.events()

    def _milliseconds(self):
        return int((time.monotonic() - self._began) * 1000)

    # The pointer --------------------------------------------------------------------------------

    def move(self, x, y):
        self._connection.send(self._pointer, MOTION_ABSOLUTE, self._milliseconds(), round(x),
                              round(y), *self._size)
        self._connection.send(self._pointer, FRAME)
        self.settle()

    def button(self, number, isDown):
        self._connection.send(self._pointer, BUTTON, self._milliseconds(), BUTTONS[number],
                              int(isDown))
        self._connection.send(self._pointer, FRAME)
        self.settle()

    # The keyboard -------------------------------------------------------------------------------

    def press(self, name, isDown):
        """A key by its name, or by the kernel's code as a decimal number of two digits or more."""
        code = KEYS[name] if name in KEYS else int(name)
        (self._held.add if isDown else self._held.discard)(code)
        self._connection.send(self._keyboard, KEY, self._milliseconds(), code, int(isDown))
        bits = 0
        for held in self._held:
            bits |= MODIFIER_BITS.get(held, 0)
        self._connection.send(self._keyboard, MODIFIERS, bits, 0, 0, 0)
        self.settle()

    def stroke(self, combination):
        """Presses and releases "Tab" or "ctrl+s"."""
        *prefixes, name = combination.split("+")
        held = [PREFIXES[prefix] for prefix in prefixes] + [name]
        for one in held:
            self.press(one, True)
        for one in reversed(held):
            self.press(one, False)

    def type(self, text):
        for letter in text:
            if letter.isupper():
                self.stroke("shift+" + letter.lower())
            elif letter in SHIFTED_SIGNS:
                self.stroke("shift+" + SHIFTED_SIGNS[letter])
            else:
                self.stroke(SIGNS.get(letter, letter))
