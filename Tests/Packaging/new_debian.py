"""A new Debian in a folder, made with debootstrap, and what is installed in it.

The archives of it keep the network out of later runs.
"""

import contextlib
import hashlib
import os
import pathlib
import re
import shutil
import subprocess

from checks import Failure, output, say

USER = "player"
# What belongs to the packages of Debian and changes whenever any package comes or goes.
CHANGES_ANYWAY = re.compile(
    r"^(var/(cache|log|tmp)/|var/lib/(apt|dpkg|ucf|systemd/catalog)(/|$)|etc/ld\.so\.cache$|"
    r"usr/share/icons/hicolor/icon-theme\.cache$|usr/share/applications/mimeinfo\.cache$|"
    r"usr/share/glib-2\.0/schemas/gschemas\.compiled$|etc/mailcap$|(tmp|run|root|home)(/|$))")


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
