"""Boots Debian's own kernel in an emulator, with the tests of the USB stack as its only programs, and
ends as they did.

The kernel's package is downloaded with apt and unpacked below --work; nothing of it is installed. It
stays there for the next run, until Debian has a newer one.
"""

import argparse
import contextlib
import lzma
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import time

META_PACKAGE = "linux-image-amd64"
# Each module after those that it needs.
MODULES = ("hid", "hid-generic", "usb-common", "usbcore", "usbhid", "evdev", "usbip-core", "vhci-hcd")
# Two machines share the tests, because each of them waits most of its time.
SHARES = ("-UsbNerinctl.*", "UsbNerinctl.*:UsbKernel.*")
# The machines are given up after this time, and with them the tests.
LIMIT_SECONDS = 60
MEMORY_MIB = 512
# What the machine's exit device makes of the verdict of Tests/UsbStack/main.cpp.
PASSED = 2 * 0x10 + 1
FAILED = 2 * 0x11 + 1


def fail(words):
    sys.exit("The test of the USB stack: " + words)


def output_of(*command, **options):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, **options).stdout


def kernel_package():
    """The package that the meta package stands for, and its version; None if apt has no lists."""
    shown = subprocess.run(("apt-cache", "show", "--no-all-versions", META_PACKAGE), text=True,
                           stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False).stdout
    found = re.search(r"^Depends: (linux-image-\S+) \(= (\S+)\)", shown, re.MULTILINE)
    return found.groups() if found else None


def update_lists():
    as_root = [] if os.geteuid() == 0 else ["sudo"]
    subprocess.run([*as_root, "apt-get", "update", "-qq"], check=True)


def vmlinux_of(vmlinuz):
    """The kernel without the program that unpacks it, which is slow in an emulator."""
    image = vmlinuz.read_bytes()
    setup_sectors = image[0x1F1] or 4
    offset, length = struct.unpack_from("<II", image, 0x248)
    begin = (setup_sectors + 1) * 512 + offset
    return lzma.LZMADecompressor(lzma.FORMAT_XZ).decompress(image[begin:begin + length])


def unpack(package, folder):
    """Lays the kernel and the modules of the package into the folder."""
    with tempfile.TemporaryDirectory(dir=folder.parent) as name:
        scratch = pathlib.Path(name)
        # apt would like to download as its own user, who may not write here.
        subprocess.run(("apt-get", "-q", "-o", "APT::Sandbox::User=root", "download", package),
                       cwd=scratch, check=True, stdout=subprocess.DEVNULL)
        files = scratch / "files"
        subprocess.run(("dpkg-deb", "-x", next(scratch.glob("*.deb")), files), check=True)
        new = scratch / "kernel"
        new.mkdir()
        (new / "vmlinux").write_bytes(vmlinux_of(next(files.glob("boot/vmlinuz-*"))))
        for module in MODULES:
            shutil.copy(next(files.glob(f"lib/modules/*/kernel/**/{module}.ko")), new)
        shutil.rmtree(folder, ignore_errors=True)
        new.rename(folder)
    (folder / "package").write_text(package)


def kernel_in(work):
    """The folder with the kernel and its modules, which is made if need be."""
    folder = work / "kernel"
    present = folder / "package"
    known = kernel_package()
    if known is None and present.exists():
        return folder
    if known is None:
        update_lists()
        known = kernel_package()
    if known is None:
        fail(f"apt does not know {META_PACKAGE}")
    package = "=".join(known)
    if not present.exists() or present.read_text() != package:
        try:
            unpack(package, folder)
        except subprocess.CalledProcessError:
            # Debian keeps no old versions, and the lists may be of last week.
            update_lists()
            unpack("=".join(kernel_package()), folder)
    return folder


def libraries_of(program):
    return sorted(set(re.findall(r"(/\S+) \(0x", output_of("ldd", program))))


def lay_file(source, root, place):
    target = root / str(place).lstrip("/")
    target.parent.mkdir(parents=True, exist_ok=True)
    if not target.exists():
        shutil.copy(source, target)


def make_archive(build, kernel, work):
    """What the machine finds as its files: two programs, their libraries, data, and modules."""
    archive = work / "initramfs"
    with tempfile.TemporaryDirectory(dir=work) as name:
        root = pathlib.Path(name)
        for program, place in (("UsbStackTest", "init"), ("nerinctl", "bin/nerinctl")):
            source = build / "bin" / program
            lay_file(source, root, place)
            # Without the lines of the sources, which a report of a sanitizer can spare here.
            subprocess.run(("strip", "-g", root / place), check=True)
            for library in libraries_of(source):
                lay_file(library, root, library)
        shutil.copytree(build / "resources", root / "resources")
        for module in MODULES:
            lay_file(kernel / f"{module}.ko", root, f"modules/{module}.ko")
        (root / "modules" / "order").write_text("".join(f"{module}.ko\n" for module in MODULES))
        for folder in ("dev", "proc", "sys", "tmp"):
            (root / folder).mkdir()
        names = "\n".join(sorted(str(path.relative_to(root)) for path in root.rglob("*")))
        with archive.open("wb") as file:
            subprocess.run(("cpio", "-o", "-H", "newc", "--quiet", "--owner=+0:+0"), cwd=root,
                           input=names.encode(), stdout=file, check=True)
    return archive


class Machine:
    """A machine with a share of the tests, a GoogleTest filter. What it says goes into the file."""

    def __init__(self, kernel, archive, share, file):
        # The log has room for all tests; on the console it would be in the way of their words. What
        # the kernel does not know becomes a variable of its first process.
        words = f"console=ttyS0 loglevel=2 log_buf_len=4M panic=-1 GTEST_FILTER={share}"
        self._file = file
        self._emulator = subprocess.Popen(
            ("qemu-system-x86_64", "-machine", "q35", "-accel", "tcg", "-cpu", "max", "-smp", "1",
             "-m", str(MEMORY_MIB), "-kernel", kernel / "vmlinux", "-initrd", archive,
             "-append", words, "-nodefaults", "-no-user-config", "-display", "none",
             "-serial", "stdio", "-no-reboot",
             "-device", "isa-debug-exit,iobase=0xf4,iosize=0x04"),
            stdin=subprocess.DEVNULL, stdout=file)

    def verdict(self, end):
        """Waits until `end` at most and prints what the machine said. None if all is well,
        or what is not."""
        try:
            code = self._emulator.wait(max(0, end - time.monotonic()))
        except subprocess.TimeoutExpired:
            self.stop()
            code = None
        self._file.seek(0)
        print(self._file.read().decode(errors="replace"), flush=True)
        if code == PASSED:
            return None
        if code is None:
            return "a machine was given up"
        return "failed" if code == FAILED else f"a machine ended without a verdict ({code})"

    def stop(self):
        self._emulator.kill()
        self._emulator.wait()


def run(kernel, archive, shares, limit, work):
    """Runs each share on a machine of its own, all at once; returns what is not well."""
    end = time.monotonic() + limit
    with contextlib.ExitStack() as stack:
        machines = []
        for share in shares:
            file = stack.enter_context(tempfile.TemporaryFile(dir=work))
            machines.append(Machine(kernel, archive, share, file))
            stack.callback(machines[-1].stop)
        return [words for words in [machine.verdict(end) for machine in machines] if words]


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", type=pathlib.Path, required=True,
                        help="the build folder with UsbStackTest and nerinctl")
    parser.add_argument("--work", type=pathlib.Path, required=True,
                        help="the folder that keeps the kernel")
    parser.add_argument("--only", help="a GoogleTest filter")
    parser.add_argument("--limit", type=int, default=LIMIT_SECONDS,
                        help="the seconds after which the machines are given up")
    arguments = parser.parse_args()
    work = arguments.work.absolute()
    work.mkdir(parents=True, exist_ok=True)
    kernel = kernel_in(work)
    archive = make_archive(arguments.build.absolute(), kernel, work)
    begin = time.monotonic()
    troubles = run(kernel, archive, [arguments.only] if arguments.only else SHARES,
                   arguments.limit, work)
    seconds = time.monotonic() - begin
    if troubles:
        fail("; ".join(troubles) + f" ({seconds:.0f} seconds)")
    print(f"The USB stack of {(kernel / 'package').read_text()}: passed in {seconds:.0f} seconds")


if __name__ == "__main__":
    main()
