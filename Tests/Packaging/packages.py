"""Builds the Debian packages twice, looks into them, and lives with them in a new Debian.

Called as packages.py --work FOLDER. FOLDER keeps the packages, and two archives of a Debian without
them: one with what they depend on, and one with what they recommend and a display. They are made with
debootstrap from the mirror of this machine at the first run, and when the dependencies change; later
runs need no network. Only what happens in that Debian is done as root.
"""

import argparse
import contextlib
import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import time

TREE = pathlib.Path(__file__).resolve().parents[2]
PACKAGES = ("nerin-companion", "nerinctl", "nerinoption", "nerinoption-data")
PROGRAMS = ("NerinOption", "NerinOptionDemo", "nerinctl", "nerin-companion")
# What shows the windows there, and says what is shown.
TOOLS = ("dbus", "dbus-bin", "dbus-daemon", "grim", "procps", "sway", "x11-utils", "xauth", "xvfb")
RULE = "usr/lib/udev/rules.d/60-nerin.rules"
APPLICATION = "usr/share/applications/com.corvex.NerinOption.desktop"
METAINFO = "usr/share/metainfo/com.corvex.NerinOption.metainfo.xml"
USER = "player"
# What belongs to the packages of Debian and changes whenever any package comes or goes.
CHANGES_ANYWAY = re.compile(
    r"^(var/(cache|log|tmp)/|var/lib/(apt|dpkg|ucf|systemd/catalog)(/|$)|etc/ld\.so\.cache$|"
    r"usr/share/icons/hicolor/icon-theme\.cache$|usr/share/applications/mimeinfo\.cache$|"
    r"usr/share/glib-2\.0/schemas/gschemas\.compiled$|etc/mailcap$|(tmp|run|root|home)(/|$))")
SECONDS_FOR_A_WINDOW = 60


class Failure(Exception):
    pass


def say(words):
    print("packages: " + words, flush=True)


def require(isSo, words):
    if not isSo:
        raise Failure(words)


def output(*command, **options):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, **options).stdout


# --- Building ------------------------------------------------------------------------------------


def build(folder, **environment):
    log = folder.with_name(folder.name + ".log")
    folder.mkdir(parents=True, exist_ok=True)
    with open(log, "w", encoding="utf-8") as file:
        code = subprocess.run([TREE / "Packaging" / "build-packages.sh", folder], stdout=file,
                              stderr=subprocess.STDOUT, env={**os.environ, **environment},
                              check=False).returncode
    if code != 0:
        print(log.read_text(errors="replace")[-4000:])
        raise Failure("the packages were not built")
    return sorted(folder.glob("*.deb"))


def sums(files):
    return {file.name: hashlib.sha256(file.read_bytes()).hexdigest() for file in files}


def buildTwice(work):
    """The packages of the first build; both builds have the same bytes."""
    say("building the packages")
    first = build(work / "first")
    say("building them again in another folder, time zone, language and with other permissions")
    before = os.umask(0o077)
    try:
        second = build(work / "second" / "in a folder further down", TZ="Pacific/Chatham",
                       LC_ALL="C.UTF-8", HOME=str(work / "no-home"))
    finally:
        os.umask(before)
    require(sums(first) == sums(second), "two builds differ: %s and %s" % (sums(first), sums(second)))
    return first


# --- Looking into them ---------------------------------------------------------------------------


def filesOf(folder):
    return sorted(path for path in folder.rglob("*") if path.is_file() and not path.is_symlink())


def lookInto(packages, work):
    say("asking lintian")
    changes = next(packages[0].parent.glob("*.changes"))
    subprocess.run(["lintian", "--allow-root", "--tag-display-limit", "0", "--display-info",
                    "--fail-on", "error,warning,info", str(changes)], check=True)
    say("looking into the packages")
    unpacked = work / "unpacked"
    shutil.rmtree(unpacked, ignore_errors=True)
    for package in packages:
        subprocess.run(["dpkg-deb", "--extract", package, unpacked], check=True)
    names = {re.sub("_.*", "", package.name) for package in packages}
    require(names >= set(PACKAGES), "packages are missing: %s" % names)
    subprocess.run(["desktop-file-validate", unpacked / APPLICATION,
                    *sorted((unpacked / "usr/share/applications").iterdir()),
                    *sorted((unpacked / "etc/xdg/autostart").iterdir())], check=True)
    subprocess.run(["appstreamcli", "validate", "--pedantic", "--no-net", unpacked / METAINFO],
                   check=True)
    rule = (unpacked / RULE).read_text()
    lines = [line for line in rule.splitlines() if line and not line.startswith("#")]
    require(len(lines) == 1 and 'TAG+="uaccess"' in lines[0] and "MODE" not in rule
            and 'ATTRS{idVendor}=="264a"' in lines[0] and 'ATTRS{idProduct}=="1001"' in lines[0],
            "the rule gives the mouse to others, or others to the user")
    for path in filesOf(unpacked):
        require(path.stat().st_mode & 0o7022 == 0, "%s may be changed by others" % path)
    version = re.search(r"project\(NerinOption VERSION ([0-9.]+)", (TREE / "CMakeLists.txt").read_text())[1]
    for program in PROGRAMS:
        path = unpacked / "usr/bin" / program
        dynamic = output("readelf", "--wide", "--dynamic", "--program-headers", path)
        require("BIND_NOW" in dynamic and "PIE" in dynamic and "GNU_RELRO" in dynamic,
                "%s is not hardened" % program)
        require("libasan" not in dynamic and "libubsan" not in dynamic, program + " is sanitized")
        require("RUNPATH" not in dynamic and "RPATH" not in dynamic, program + " has a run path")
        require(str(TREE).encode() not in path.read_bytes(), program + " names a folder of this machine")
    for size in (16, 22, 24, 32, 48, 64, 128, 256, 512):
        require((unpacked / ("usr/share/icons/hicolor/%dx%d/apps/com.corvex.NerinOption.png"
                             % (size, size))).is_file(), "the icon of %d pixels is missing" % size)
    for package in packages:
        require(output("dpkg-deb", "--field", package, "Version").strip() == version,
                "%s is not of version %s" % (package.name, version))
        say("%s: %d KiB" % (package.name, package.stat().st_size // 1024))


# --- A new Debian --------------------------------------------------------------------------------


class Machine:
    """A folder with a Debian that programs take for the whole system."""

    def __init__(self, folder):
        self.folder = folder

    @contextlib.contextmanager
    def running(self):
        mounts = []
        try:
            for kind, name, options in (("proc", "proc", []), ("tmpfs", "tmp", ["-o", "mode=1777"]),
                                        ("tmpfs", "run", []), ("tmpfs", "dev/shm", [])):
                (self.folder / name).mkdir(exist_ok=True)
                subprocess.run(["mount", "-t", kind, *options, kind, self.folder / name], check=True)
                mounts.append(self.folder / name)
            # As on every Debian; only root may make it.
            sockets = self.folder / "tmp" / ".X11-unix"
            sockets.mkdir()
            sockets.chmod(0o1777)
            yield self
        finally:
            for place in reversed(mounts):
                subprocess.run(["umount", "--lazy", place], check=False)

    def run(self, *command, user=None, **options):
        """Runs a command there, as root or the user, with nothing of this environment."""
        environment = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LANG": "C.UTF-8", "HOME": "/root",
                       "DEBIAN_FRONTEND": "noninteractive"}
        environment.update({name: os.environ[name] for name in ("http_proxy", "https_proxy")
                            if name in os.environ})
        words = ["chroot", str(self.folder)]
        if user:
            environment.update(HOME="/home/" + user, USER=user)
            # Displays listen on addresses that all folders share, but not all networks.
            words = ["unshare", "--net", "chroot", "--userspec=%s:%s" % (user, user), str(self.folder)]
        options.setdefault("check", True)
        options.setdefault("cwd", "/")
        return subprocess.run([*words, *map(str, command)], env=environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **options)

    def apt(self, *words):
        answer = self.run("apt-get", "-y", "-o", "Dpkg::Use-Pty=0", "-o", "APT::Sandbox::User=root",
                          "-o", "Dpkg::Options::=--force-unsafe-io", *words, check=False)
        if answer.returncode != 0:
            print(answer.stdout[-3000:])
            raise Failure("apt-get %s failed" % " ".join(map(str, words)))
        return answer.stdout

    def files(self):
        """What there is, but for what changes anyway: {path: what it is and holds}."""
        found = {}
        for folder, folders, names in os.walk(self.folder):
            if folder == str(self.folder):
                folders[:] = [name for name in folders if name not in ("proc", "sys", "dev")]
            for name in folders + names:
                path = pathlib.Path(folder, name)
                relative = str(path.relative_to(self.folder))
                if not CHANGES_ANYWAY.match(relative):
                    isFile = path.is_file() and not path.is_symlink()
                    found[relative] = hashlib.sha256(path.read_bytes()).hexdigest() if isFile else ""
        return found

    def home(self):
        return self.folder / "home" / USER


def relationsOf(packages, field):
    """The names of other packages; of alternatives the first."""
    names = set()
    for package in packages:
        for relation in output("dpkg-deb", "--field", package, field).split(","):
            name = re.match(r"\s*([a-z0-9+.-]*)", relation)[1]
            if name and name not in PACKAGES:
                names.add(name)
    return sorted(names)


def mirror():
    """The first place of Debian's own packages, and the name of the release."""
    codename = re.search(r"^VERSION_CODENAME=(\S+)", pathlib.Path("/etc/os-release").read_text(),
                         re.MULTILINE)[1]
    lines = output("apt-get", "indextargets", "--format", "$(REPO_URI) $(CODENAME)",
                   "Created-By: Packages").splitlines()
    for line in lines:
        place, _, name = line.partition(" ")
        if name == codename:
            return place, codename
    raise Failure("apt knows no mirror of %s; run apt-get update" % codename)


def makeNew(folder):
    place, codename = mirror()
    say("making a new Debian (%s)" % codename)
    log = folder.with_suffix(".log")
    with open(log, "w", encoding="utf-8") as file:
        code = subprocess.run(["debootstrap", "--variant=minbase", codename, folder, place],
                              stdout=file, stderr=subprocess.STDOUT, check=False).returncode
    if code != 0:
        print(log.read_text()[-2000:])
        raise Failure("debootstrap failed")
    for name in ("apt/sources.list", "apt/sources.list.d", "resolv.conf", "hosts"):
        source = pathlib.Path("/etc", name)
        target = folder / "etc" / name
        if source.is_dir():
            shutil.copytree(source, target, dirs_exist_ok=True)
        elif source.exists():
            shutil.copy(source, target)
        else:
            target.unlink(missing_ok=True)
    # No package starts a service in it.
    policy = folder / "usr/sbin/policy-rc.d"
    policy.write_text("#!/bin/sh\nexit 101\n")
    policy.chmod(0o755)


class Archives:
    """Debians that are ready to be unpacked, by what is installed in them."""

    def __init__(self, work):
        self.work = work
        work.mkdir(parents=True, exist_ok=True)

    def unpack(self, name, packages, base=None):
        """A machine with these packages in the folder `name`, made of the one that `base` unpacks."""
        key = hashlib.sha256(" ".join(packages).encode()).hexdigest()[:16]
        archive = self.work / ("%s-%s.tar" % (name, key))
        folder = self.work / name
        shutil.rmtree(folder, ignore_errors=True)
        machine = Machine(folder)
        if not archive.exists():
            for old in self.work.glob(name + "-*.tar"):
                old.unlink()
            if base:
                base().folder.rename(folder)
                say("installing there: " + " ".join(packages))
                with machine.running():
                    machine.apt("update")
                    machine.apt("install", "--no-install-recommends", *packages)
                    machine.apt("clean")
            else:
                makeNew(folder)
                machine.run("useradd", "--create-home", USER)
            part = archive.with_suffix(".part")
            subprocess.run(["tar", "--create", "--file", part, "--directory", folder, "."],
                           check=True)
            part.rename(archive)
        else:
            folder.mkdir()
            subprocess.run(["tar", "--extract", "--file", archive, "--directory", folder], check=True)
        return machine

    def plain(self, depends):
        return self.unpack("plain", depends, lambda: self.unpack("new", ()))


# --- Living with them ----------------------------------------------------------------------------


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


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--work", type=pathlib.Path, required=True)
    parser.add_argument("--live", type=pathlib.Path,
                        help="only live with the packages of this folder; as root")
    arguments = parser.parse_args()
    work = arguments.work.absolute()
    work.mkdir(parents=True, exist_ok=True)
    begin = time.monotonic()
    try:
        if arguments.live:
            packages = [package for package in sorted(arguments.live.absolute().glob("*.deb"))
                        if "-dbgsym_" not in package.name]
            archives = Archives(work / "machine")
            liveWithDependenciesAlone(archives, packages)
            liveWithAll(archives, packages, work)
        else:
            packages = buildTwice(work)
            lookInto(packages, work)
            # The mounts of the new Debian, and its processes, end with this one.
            asRoot = [] if os.geteuid() == 0 else ["sudo"]
            subprocess.run([*asRoot, "unshare", "--mount", "--pid", "--fork", "--kill-child",
                            "--mount-proc", sys.executable, "-B", __file__, "--work", work,
                            "--live", packages[0].parent], check=True)
    except (Failure, subprocess.CalledProcessError, subprocess.TimeoutExpired) as error:
        sys.exit("packages: failed: %s" % error)
    say("passed in %d seconds" % (time.monotonic() - begin))


if __name__ == "__main__":
    main()
