"""What every private desktop has, whatever its display is: a home folder, a session bus, the programs
that run on it, and pictures. A class for each kind of display adds the rest.

Positions and sizes are pixels at 1x, like those of the masters, at every scale.
"""

import collections
import os
import re
import shutil
import signal
import struct
import subprocess
import tempfile
import time
import zlib

from gi.repository import Gio, GLib

POLL_SECONDS = 0.02
# How long a program may take to end before it is killed.
STOP_SECONDS = 10
# The environment variables that a program gets besides those of the desktop.
INHERITED = ("PATH", "TMPDIR", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS")

NOTIFICATION_PATH = "/com/corvex/NerinOption"
NOTIFICATION_INTERFACE = "com.corvex.NerinOption.Notification"

# Without service folders the bus starts no services by itself.
BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  %s
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""

# member: the notification's name. object: its text. userInfo: {key: number}, None without one.
Message = collections.namedtuple("Message", "member object userInfo")
# A visible window. Dialogs have the title of the program, so only the size distinguishes them.
Window = collections.namedtuple("Window", "id title x y width height")
# Rows of three bytes a pixel, in pixels of the screen.
Picture = collections.namedtuple("Picture", "width height rgb")


def wait_until(condition, timeout=30, what="something"):
    """Returns the result of the condition as soon as it is true. Raises a TimeoutError that names
    what was missing."""
    end = time.monotonic() + timeout
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() >= end:
            raise TimeoutError("waited %g s for %s" % (timeout, what))
        time.sleep(POLL_SECONDS)


def frames(header):
    """{screen: {control: (x, y, width, height)}} from the header of the artwork compiler."""
    screens = {}
    with open(header, encoding="utf-8") as file:
        for line in file:
            if opened := re.match(r"struct (\w+) \{", line):
                screens[opened[1]] = controls = {}
            elif frame := re.match(
                    r"  static constexpr Frame (\w+)\{(\d+), (\d+), (\d+), (\d+),", line):
                controls[frame[1]] = tuple(int(number) for number in frame.groups()[1:])
    return screens


def middle(frame):
    """The middle of a control's frame, which is where a click goes."""
    x, y, width, height = frame
    return x + width // 2, y + height // 2


def crop(picture, frame):
    """A part of a picture; the frame is in the picture's own pixels."""
    x, y, width, height = frame
    rows = ((row * picture.width + x) * 3 for row in range(y, y + height))
    return Picture(width, height,
                   b"".join(picture.rgb[start:start + width * 3] for start in rows))


def writePng(path, picture):
    def chunk(kind, body):
        return (struct.pack(">I", len(body)) + kind + body +
                struct.pack(">I", zlib.crc32(kind + body)))

    stride = picture.width * 3
    rows = b"".join(b"\0" + picture.rgb[y * stride:(y + 1) * stride]
                    for y in range(picture.height))
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" +
                   chunk(b"IHDR", struct.pack(">IIBBBBB", picture.width, picture.height,
                                              8, 2, 0, 0, 0)) +
                   chunk(b"IDAT", zlib.compress(rows, 6)) + chunk(b"IEND", b""))


class Listener:
    """Receives the broadcast notifications on a bus."""

    def __init__(self, address):
        self._context = GLib.MainContext()
        self._context.push_thread_default()
        try:
            self._connection = connect(address)
            self._connection.signal_subscribe(
                None, NOTIFICATION_INTERFACE, None, NOTIFICATION_PATH, None,
                Gio.DBusSignalFlags.NONE, self._receive)
            # The bus answers this after it has handled the subscription.
            callBus(self._connection, "GetId")
        finally:
            self._context.pop_thread_default()
        self._messages = []

    def _receive(self, _connection, _sender, _path, _interface, member, arguments):
        received = arguments.unpack()
        self._messages.append(
            Message(member, received[0], received[1] if len(received) > 1 else None))

    @property
    def messages(self):
        """All messages so far, in the order of their arrival."""
        while self._context.pending():
            self._context.iteration(False)
        return self._messages

    def close(self):
        self._connection.close_sync()


class NotificationServer:
    """Stands for the desktop's display of notifications on a bus. It answers when it is looked at."""

    NAME = "org.freedesktop.Notifications"
    PATH = "/org/freedesktop/Notifications"
    INTERFACE = """<node><interface name="org.freedesktop.Notifications"><method name="Notify">
        <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
        <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
        <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/>
        <arg type="u" direction="out"/></method></interface></node>"""
    NUMBER = 41

    def __init__(self, address):
        self._shown = []
        self._context = GLib.MainContext()
        self._context.push_thread_default()
        try:
            self._connection = connect(address)
            interface = Gio.DBusNodeInfo.new_for_xml(self.INTERFACE).interfaces[0]
            self._connection.register_object(self.PATH, interface, self._show, None, None)
            callBus(self._connection, "RequestName",
                    arguments=GLib.Variant("(su)", (self.NAME, 0)))
        finally:
            self._context.pop_thread_default()

    def _show(self, _connection, _sender, _path, _interface, _method, arguments, call):
        self._shown.append(arguments.unpack()[3:5])
        call.return_value(GLib.Variant("(u)", (self.NUMBER,)))

    @property
    def shown(self):
        """The summary and the body of each notification so far."""
        while self._context.pending():
            self._context.iteration(False)
        return self._shown

    def close(self):
        self._connection.close_sync()


def connect(address):
    connection = Gio.DBusConnection.new_for_address_sync(
        address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT |
        Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)
    # The bus ends before the connection, which must not end this process.
    connection.set_exit_on_close(False)
    return connection


def callBus(connection, method, path="/org/freedesktop/DBus", interface="org.freedesktop.DBus",
            arguments=None, name="org.freedesktop.DBus"):
    answer = connection.call_sync(name, path, interface, method, arguments, None,
                                  Gio.DBusCallFlags.NONE, 10000)
    return answer.unpack()


class PrivateSession:
    """A context manager. Its files are below `folder`: a new home folder and the logs of the
    programs. A class of it starts the display (`_startDisplay`, which adds to `environment` what a
    program needs to find it) and tells of its windows (`windows`)."""

    def __init__(self, folder, size=(1500, 900), scale=1, language="en_US.UTF-8",
                 accessibility=False):
        self.folder = os.path.abspath(folder)
        self.home = os.path.join(self.folder, "home")
        self.size = size
        self.scale = scale
        self.language = language
        self.accessibility = accessibility
        self.environment = {}
        self._children = []
        self._programs = []
        self._listeners = []
        self._logs = {}
        self._connection = None

    # Beginning and end --------------------------------------------------------------------------

    def __enter__(self):
        shutil.rmtree(self.home, ignore_errors=True)
        os.makedirs(self.home)
        self._runtime = tempfile.mkdtemp(prefix="desktop-")
        try:
            self._startServices()
        except BaseException:
            self._end()
            raise
        return self

    def __exit__(self, *_error):
        self._end()

    # Where a program, by its identifier, keeps the user's files.

    def support(self, program):
        return os.path.join(self.home, ".local", "share", program)

    def state(self, program):
        return os.path.join(self.home, ".local", "state", program)

    def preferences(self, program):
        return os.path.join(self.home, ".config", program + ".plist")

    def _startServices(self):
        self.environment = {name: os.environ[name] for name in INHERITED if name in os.environ}
        self.environment.update(HOME=self.home, LANG=self.language, XDG_RUNTIME_DIR=self._runtime)
        self._startDisplay()
        configuration = os.path.join(self._runtime, "bus.conf")
        with open(configuration, "w", encoding="utf-8") as file:
            file.write(BUS_CONFIGURATION %
                       ("<standard_session_servicedirs/>" if self.accessibility else ""))
        self.address = self._startServer(
            lambda end: ["dbus-daemon", "--config-file=" + configuration, "--nofork", "--nopidfile",
                         "--print-address=%d" % end])
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.address
        self._connection = connect(self.address)
        if self.accessibility:
            self._enableAccessibility()
        self._awaitDisplay()

    def _awaitDisplay(self):
        """What the display needs once the bus is there."""

    def _enableAccessibility(self):
        callBus(self._connection, "Set", "/org/a11y/bus", "org.freedesktop.DBus.Properties",
                GLib.Variant("(ssv)", ("org.a11y.Status", "IsEnabled",
                                       GLib.Variant("b", True))), "org.a11y.Bus")

    def _spawn(self, command, environment=None, **options):
        name = os.path.basename(command[0])
        number = sum(log.startswith(name) for log in self._logs.values()) + 1
        log = "%s-%d.log" % (name, number)
        with open(os.path.join(self.folder, log), "wb") as output:
            # Everything ends with this process, even if it is killed.
            child = subprocess.Popen(["setpriv", "--pdeathsig", "KILL", "--"] + command,
                                     env=environment or self.environment, cwd=self.home,
                                     stdin=subprocess.DEVNULL, stdout=output,
                                     stderr=subprocess.STDOUT, **options)
        self._logs[child] = log
        self._children.append(child)
        return child

    def _startServer(self, command):
        """Starts a server that writes its address to a file descriptor. Returns that line."""
        reading, writing = os.pipe()
        with os.fdopen(reading, "rb") as answer:
            child = self._spawn(command(writing), pass_fds=[writing])
            os.close(writing)
            line = answer.readline().decode().strip()
        if not line:
            raise RuntimeError("%s did not start:\n%s" % (child.args[4], self.log(child)))
        return line

    def _end(self):
        for listener in self._listeners:
            listener.close()
        if self._connection is not None:
            self._connection.close_sync()
        # The programs first, the display last.
        for child in reversed(self._children):
            self.stop(child)
        self._endActivated()
        shutil.rmtree(self._runtime, ignore_errors=True)

    def _endActivated(self):
        """Ends the services that the bus started. They are recognized by this desktop's home."""
        ours = b"HOME=" + os.fsencode(self.home)
        for entry in os.listdir("/proc"):
            try:
                with open("/proc/%s/environ" % entry, "rb") as file:
                    if entry.isdigit() and ours in file.read().split(b"\0"):
                        os.kill(int(entry), signal.SIGKILL)
            except OSError:
                continue

    # Programs -----------------------------------------------------------------------------------

    def start(self, program, *arguments, **environment):
        child = self._spawn([os.path.abspath(program), *arguments],
                            {**self.environment, **environment})
        self._programs.append(child)
        return child

    def stop(self, process):
        """Ends a program from outside, unless it has ended. Returns its exit code."""
        if process.poll() is None:
            process.terminate()
            try:
                process.wait(STOP_SECONDS)
            except subprocess.TimeoutExpired:
                process.kill()
        return process.wait()

    def log(self, process):
        """What a program has written so far."""
        with open(os.path.join(self.folder, self._logs[process]), encoding="utf-8",
                  errors="replace") as file:
            return file.read()

    def _run(self, *command):
        # Titles can have letters that a machine without the desktop's language cannot print.
        return subprocess.run(command, env={**self.environment, "LC_ALL": "C.UTF-8"},
                              capture_output=True, encoding="utf-8", errors="replace",
                              check=False).stdout

    # Windows ------------------------------------------------------------------------------------

    def window(self, title, timeout=30, size=None):
        """The id of the window with this title, and with this size if several have the title."""
        def look():
            alive = any(program.poll() is None for program in self._programs)
            for window in self.windows():
                if window.title == title and size in (None, (window.width, window.height)):
                    return window
            if not alive:
                raise RuntimeError("no program is left to show the window \"%s\"\n%s" % (
                    title, "\n".join(self.log(program) for program in self._programs)))
            return None

        return wait_until(look, timeout, "the window \"%s\"%s" % (
            title, " of %d x %d" % size if size else "")).id

    # Pictures -----------------------------------------------------------------------------------

    def screenshot(self, path, window=None):
        writePng(path, self.picture(window))

    # The bus ------------------------------------------------------------------------------------

    def signal(self, name, **numbers):
        """Sends a broadcast notification."""
        info = {key: GLib.Variant("i", number) for key, number in numbers.items()}
        self._connection.emit_signal(None, NOTIFICATION_PATH, NOTIFICATION_INTERFACE, name,
                                     GLib.Variant("(sa{sv})", ("", info)))
        self._connection.flush_sync()

    def isHearing(self, process):
        """Whether a program has subscribed to notifications; those sent earlier are lost."""
        rules = callBus(self._connection, "GetAllMatchRules",
                        interface="org.freedesktop.DBus.Debug.Stats")[0]
        return any(self._processOf(name) == process.pid for name, matches in rules.items()
                   if any(NOTIFICATION_INTERFACE in match for match in matches))

    def _processOf(self, name):
        try:
            return callBus(self._connection, "GetConnectionUnixProcessID",
                           arguments=GLib.Variant("(s)", (name,)))[0]
        except GLib.Error:
            return None

    def own(self, name):
        """Owns a name on the bus until the end, as a running service does."""
        callBus(self._connection, "RequestName", arguments=GLib.Variant("(su)", (name, 0)))

    def property(self, name, path, interface, member):
        """What a program on the bus tells of itself. A GLib.Error if it is not there."""
        return callBus(self._connection, "Get", path, "org.freedesktop.DBus.Properties",
                       GLib.Variant("(ss)", (interface, member)), name)[0]

    def listen(self):
        listener = Listener(self.address)
        self._listeners.append(listener)
        return listener
