"""Lives with the packages in a new Debian: installs, uses, upgrades, removes and purges them."""

import json
import re
import shutil

from checks import Failure, filesOf, output, require, say
from new_debian import USER

PACKAGES = ("nerin-companion", "nerinctl", "nerinoption", "nerinoption-data")
PROGRAMS = ("NerinOption", "NerinOptionDemo", "nerinctl", "nerin-companion")
# What shows the windows there, and says what is shown.
TOOLS = ("dbus", "dbus-bin", "dbus-daemon", "grim", "procps", "sway", "x11-utils", "xauth", "xvfb")
SECONDS_FOR_A_WINDOW = 60


def relationsOf(packages, field):
    """The names of other packages; of alternatives the first."""
    names = set()
    for package in packages:
        for relation in output("dpkg-deb", "--field", package, field).split(","):
            name = re.match(r"\s*([a-z0-9+.-]*)", relation)[1]
            if name and name not in PACKAGES:
                names.add(name)
    return sorted(names)


def install(machine, packages, *options):
    """Installs the packages as a person would, who has downloaded them."""
    place = machine.folder / "tmp" / "packages"
    place.mkdir(exist_ok=True)
    for package in packages:
        shutil.copy(package, place)
    return machine.apt("install", "--reinstall", "--allow-downgrades", *options,
                       *["/tmp/packages/" + package.name for package in packages])


def requireSame(before, after, words):
    changed = sorted(path for path in {*before, *after} if before.get(path) != after.get(path))
    require(not changed, words + ": " + ", ".join(changed[:20]))


def tryCommandLine(machine):
    say("nerinctl in it")

    def nerinctl(*words):
        answer = machine.run("nerinctl", "--virtual", "/home/%s/mouse" % USER, "--json", *words,
                             user=USER)
        return json.loads(answer.stdout)

    require(nerinctl("status")["activeSlot"] == 1, "nerinctl does not find the slot")
    nerinctl("profiles", "add", "Office")
    nerinctl("apply", "Office", "--slot", "3")
    require(nerinctl("read", "--slot", "3")["name"] == "Office", "nerinctl did not write the slot")
    status = nerinctl("status")
    require(status["files"]["layout"] == "xdg" and status["profiles"] == 1, "not as it should: %s" % status)
    # The data that came with it, and the user's copy.
    require((machine.home() / ".local/share/com.corvex.NerinOption/MenuInfo.xml").read_bytes()
            == (machine.folder / "usr/share/NerinOption/MenuInfo.xml").read_bytes(),
            "the catalogue is not that of the package")
    findings = machine.run("nerinctl", "--json", "doctor", user=USER)
    rule = [each for each in json.loads(findings.stdout) if each["subject"] == "udev rule"]
    require(rule and rule[0]["ok"], "nerinctl doctor does not find the rule")


def tryLibraries(machine):
    for program in PROGRAMS:
        libraries = machine.run("ldd", "/usr/bin/" + program).stdout
        require("not found" not in libraries, "%s lacks a library:\n%s" % (program, libraries))


def tryCompanion(machine):
    say("the bus starts the companion")
    machine.run("dbus-run-session", "--", "gdbus", "wait", "--session", "--timeout=20",
                "--activate=com.corvex.NerinOption.Companion",
                "com.corvex.NerinOption.Companion", user=USER, timeout=60)


# Starts a display, then each program on it, and asks until the window is there.
UNDER_X = """
set -e
export XDG_RUNTIME_DIR=/tmp/runtime-player
mkdir -p -m 0700 "$XDG_RUNTIME_DIR"
mkdir -p "$XDG_RUNTIME_DIR/screen"
Xvfb :17 -screen 0 1600x1000x24 -nolisten tcp -noreset -fbdir "$XDG_RUNTIME_DIR/screen" & server=$!
trap 'kill $program $server 2>/dev/null' EXIT
export DISPLAY=:17
for try in $(seq 200); do xwininfo -root >/dev/null 2>&1 && break; sleep 0.1; done
%(program)s & program=$!
for try in $(seq 300); do
  id=$(xwininfo -root -tree | sed -n 's/^ *\(0x[0-9a-f]*\) "%(title)s": ("%(program)s" .*/\\1/p' | head -1)
  if [ -n "$id" ]; then
    sleep 3
    kill -0 $program
    xwininfo -id $id | grep -q 'Map State: IsViewable'
    cp "$XDG_RUNTIME_DIR/screen/Xvfb_screen0" ~/shown.xwd
    exit 0
  fi
  sleep 0.2
done
xwininfo -root -tree
exit 1
"""
UNDER_WAYLAND = """
set -e
export XDG_RUNTIME_DIR=/tmp/runtime-player XDG_SESSION_TYPE=wayland XDG_CURRENT_DESKTOP=sway
export WLR_BACKENDS=headless WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman
mkdir -p -m 0700 "$XDG_RUNTIME_DIR"
printf 'output HEADLESS-1 mode 1600x1000\\nxwayland disable\\nfor_window [title=".*"] floating enable\\n' \\
  >~/sway.conf
sway -c ~/sway.conf & compositor=$!
trap 'kill $program $compositor 2>/dev/null' EXIT
for try in $(seq 200); do
  for socket in "$XDG_RUNTIME_DIR"/wayland-? ; do [ -S "$socket" ] && break 2; done; sleep 0.1
done
export WAYLAND_DISPLAY=$(basename "$socket")
export SWAYSOCK=$(ls "$XDG_RUNTIME_DIR"/sway-ipc.*)
%(program)s & program=$!
for try in $(seq 300); do
  if swaymsg -r -t get_tree | grep -q '"name": "%(title)s"'; then
    sleep 3
    kill -0 $program
    swaymsg -r -t get_tree >~/tree.json
    grim ~/shown.png
    exit 0
  fi
  sleep 0.2
done
swaymsg -r -t get_tree
exit 1
"""


def tryWindow(machine, script, program):
    answer = machine.run("dbus-run-session", "--", "bash", "-c",
                         script % {"program": program, "title": program}, user=USER, check=False,
                         timeout=2 * SECONDS_FOR_A_WINDOW)
    if answer.returncode != 0:
        print(answer.stdout[-3000:])
        raise Failure("%s does not show its window" % program)


def colorsOf(screen):
    """How many colors a picture of the display has, of 32 bits a pixel."""
    data = screen.read_bytes()
    header = int.from_bytes(data[:4], "big")
    colors = int.from_bytes(data[76:80], "big")
    pixels = data[header + 12 * colors:]
    return len({pixels[at:at + 3] for at in range(0, len(pixels), 4)})


def tryWindows(machine, work):
    shots = work / "pictures"
    shots.mkdir(exist_ok=True)
    for program in ("NerinOptionDemo", "NerinOption"):
        say(program + " on an X11 display")
        tryWindow(machine, UNDER_X, program)
        colors = colorsOf(machine.home() / "shown.xwd")
        require(colors > 1000, "%s shows only %d colors" % (program, colors))
        shutil.copy(machine.home() / "shown.xwd", shots / (program + ".xwd"))
        say(program + " on a Wayland compositor")
        tryWindow(machine, UNDER_WAYLAND, program)
        tree = (machine.home() / "tree.json").read_text()
        require('"shell": "xdg_shell"' in tree, program + " is not a window of Wayland")
        picture = machine.home() / "shown.png"
        require(picture.stat().st_size > 50_000, program + " shows nothing on Wayland")
        shutil.copy(picture, shots / (program + ".png"))
    require((machine.home() / ".local/state/com.corvex.NerinOption").is_dir(),
            "the window did not keep its state where Linux desktops do")


def userData(machine):
    folder = machine.home()
    return {str(path.relative_to(folder)): path.read_bytes() for path in filesOf(folder)}


def liveWithDependenciesAlone(archives, packages):
    depends = relationsOf(packages, "Depends")
    machine = archives.plain(depends)
    with machine.running():
        before = machine.files()
        say("installing the packages with nothing but what they depend on")
        told = install(machine, packages, "--no-install-recommends")
        new = re.findall(r"^Setting up (\S+)", told, re.MULTILINE)
        require(set(new) <= set(PACKAGES), "more is needed than the packages say: %s" % new)
        tryLibraries(machine)
        tryCommandLine(machine)
        machine.apt("purge", *PACKAGES)
        requireSame(before, machine.files(), "a purge left or took away")


def liveWithAll(archives, packages, work):
    wanted = sorted({*relationsOf(packages, "Depends"), *relationsOf(packages, "Recommends"), *TOOLS})
    depends = relationsOf(packages, "Depends")
    machine = archives.unpack("desktop", wanted, lambda: archives.plain(depends))
    with machine.running():
        before = machine.files()
        say("installing the packages beside a desktop")
        install(machine, packages)
        tryCommandLine(machine)
        tryCompanion(machine)
        tryWindows(machine, work)
        settings = machine.folder / "etc/xdg/autostart/nerin-companion.desktop"
        settings.write_text(settings.read_text() + "Hidden=true\n")
        kept = userData(machine)
        say("upgrading them over themselves")
        installed = machine.files()
        install(machine, packages)
        requireSame(installed, machine.files(), "an upgrade changed")
        require(userData(machine) == kept, "an upgrade changed the user's data")
        require("Hidden=true" in settings.read_text(), "an upgrade undid what the user had set")
        machine.run("nerinctl", "--virtual", "/home/%s/mouse" % USER, "status", user=USER)
        say("removing them")
        machine.apt("remove", *PACKAGES)
        left = sorted({*machine.files()} - {*before})
        require(not [path for path in left if not path.startswith(("etc/", "var/lib/systemd/"))],
                "a removal left: " + ", ".join(left))
        require("Hidden=true" in settings.read_text(), "a removal took the user's settings away")
        # apt does not know those of them any more that left nothing.
        machine.run("dpkg", "--purge", *PACKAGES)
        requireSame(before, machine.files(), "a purge left or took away")
        require(userData(machine) == kept, "a purge changed the user's data")
