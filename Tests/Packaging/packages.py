"""Builds the Debian packages twice, looks into them, and lives with them in a new Debian.

Called as packages.py --work FOLDER. FOLDER keeps the packages, and two archives of a Debian without
them: one with what they depend on, and one with what they recommend and a display. They are made with
debootstrap from the mirror of this machine at the first run, and when the dependencies change; later
runs need no network. Only what happens in that Debian is done as root.
"""

import argparse
import hashlib
import os
import pathlib
import re
import shutil
import subprocess
import sys
import time

from checks import Failure, filesOf, output, require, say
from living import PACKAGES, PROGRAMS, liveWithAll, liveWithDependenciesAlone
from new_debian import Archives

TREE = pathlib.Path(__file__).resolve().parents[2]
RULE = "usr/lib/udev/rules.d/60-nerin.rules"
APPLICATION = "usr/share/applications/com.corvex.NerinOption.desktop"
METAINFO = "usr/share/metainfo/com.corvex.NerinOption.metainfo.xml"


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


# --- The test ---------------------------------------------------------------------------------------


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
