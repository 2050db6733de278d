#!/usr/bin/env python3
"""Runs the fuzz targets, each for the same time, and prints a table of what they reached.

    cmake --preset fuzz && cmake --build --preset fuzz
    Tools/run_fuzzers.py --minutes 10 [TARGET...]
    cmake --preset fuzz-lines && cmake --build --preset fuzz-lines
    Tools/run_fuzzers.py --lines [TARGET...]

The second form runs what the first one found through programs that count lines.
What a target finds new stays in build/fuzz/found/TARGET, so that the next run begins where this one
ended. An input that ends the program lies beside it as crash-*, timeout-* or oom-*.
"""

import argparse
import concurrent.futures
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
LARGEST_INPUT = 1 << 16
SECONDS_PER_INPUT = 10
MEGABYTES = 2048
# The files that read the input of each target; the rest of what it reaches works on what was read.
READERS = {
    "BroadcastFuzzer": ["Kit/Bus/BusNotification.cpp", "Companion/Policy/WindowMessage.cpp"],
    "BusAddressFuzzer": ["Kit/Bus/SessionBus.cpp"],
    "CatalogueUpdateFuzzer": ["Action/Texts/CatalogueUpdate.cpp"],
    "CommandLineFuzzer": ["CommandLine/CommandLine.cpp", "CommandLine/Grammar.cpp"],
    "DecodedPictureFuzzer": ["Kit/Widgets/DecodedPicture.cpp"],
    "DeviceByteFuzzer": ["Action/Device/DeviceLink.cpp"],
    "ImageReportFuzzer": ["Action/Wire/ProfileImage.cpp"],
    "MacroArchiveFuzzer": ["Kit/Core/KeyedArchive.cpp"],
    "MacroDraftFuzzer": ["Action/Edit/MacroDraft.cpp"],
    "MacroReportFuzzer": ["Action/Wire/MacroImage.cpp"],
    "MenuInfoFuzzer": ["Action/Catalogue/CatalogueFile.cpp", "Action/Catalogue/MacroCatalogue.cpp"],
    "MouseMemoryFuzzer": ["VirtualMouse/MouseMemoryFile.cpp"],
    "MouseTransferFuzzer": ["VirtualMouse/MouseFirmware.cpp"],
    "NameReportFuzzer": ["Action/Wire/ProfileName.cpp"],
    "ProfileFileFuzzer": ["Action/Library/ProfileValue.cpp"],
    "ProgramNameFuzzer": ["Companion/Policy/AppMatcher.cpp", "Action/Service/LearnedButtons.cpp"],
    "PropertyListFuzzer": ["Kit/Core/PropertyList.cpp", "Kit/Core/BinaryPropertyListGuard.cpp",
                           "Kit/Core/XmlPropertyListGuard.cpp"],
    "ReportDescriptorFuzzer": ["Kit/Device/ReportDescriptor.cpp"],
    "ShortTextFuzzer": ["Kit/Core/Utf8.cpp", "Kit/Core/Transliteration.cpp",
                        "VirtualMouse/MouseScenario.cpp"],
    "SlotDraftFuzzer": ["Action/Edit/SlotDraft.cpp"],
    "SlotFileFuzzer": ["Action/Wire/SlotReports.cpp"],
    "TooltipFuzzer": ["Action/Texts/TooltipManager.cpp"],
}


def targets_of(build):
    return sorted(path.name for path in (build / "bin").glob("*Fuzzer"))


def run(name, build, minutes):
    """Returns what the target reached, as a row of the table."""
    found = build / "found" / name
    found.mkdir(parents=True, exist_ok=True)
    seeds = ROOT / "Fuzz" / "corpus" / name
    log = build / "found" / (name + ".log")
    with tempfile.TemporaryDirectory(prefix="nerin-fuzz-") as home, open(log, "wb") as output:
        code = subprocess.run(
            ["nice", build / "bin" / name, found, *([seeds] if seeds.is_dir() else []),
             f"-max_total_time={round(minutes * 60)}", f"-max_len={LARGEST_INPUT}",
             f"-timeout={SECONDS_PER_INPUT}", f"-rss_limit_mb={MEGABYTES}",
             "-print_final_stats=1", f"-artifact_prefix={build}/found/{name}-"],
            stdout=output, stderr=subprocess.STDOUT, check=False,
            env={**os.environ, "TMPDIR": home}).returncode
    text = log.read_text(errors="replace")
    states = re.findall(r"#\d+\s+\w+\s+cov: (\d+) ft: (\d+) corp: (\d+)/(\S+)", text)
    runs = re.search(r"number_of_executed_units: (\d+)", text)
    cov, features, corpus, size = states[-1] if states else ("?", "?", "?", "?")
    return (name, runs.group(1) if runs else "?", cov, features, f"{corpus} ({size})",
            "none" if code == 0 else f"exit code {code}, see {log}")


def llvm(tool):
    for name in (tool, tool + "-14"):
        if shutil.which(name):
            return name
    sys.exit(f"{tool} is not installed")


def count_lines(name, build):
    """Returns the lines that the corpus and what was found reach, as a row of the table."""
    replay = ROOT / "build" / "fuzz-lines" / "bin" / (name + "Replay")
    folders = [ROOT / "Fuzz" / "corpus" / name, build / "found" / name]
    with tempfile.TemporaryDirectory(prefix="nerin-fuzz-") as home:
        profiles = []
        for folder in filter(lambda one: one.is_dir() and any(one.iterdir()), folders):
            profiles.append(f"{home}/{len(profiles)}.profraw")
            subprocess.run([replay, folder], check=True, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL,
                           env={**os.environ, "TMPDIR": home, "LLVM_PROFILE_FILE": profiles[-1]})
        whole = f"{home}/whole.profdata"
        subprocess.run([llvm("llvm-profdata"), "merge", "-o", whole, *profiles], check=True)
        summary = json.loads(subprocess.run(
            [llvm("llvm-cov"), "export", "-summary-only", f"-instr-profile={whole}", replay],
            check=True, capture_output=True).stdout)
    lines = {}
    for file in summary["data"][0]["files"]:
        # The top of the tree is cut off, after which sources seem to lie in the build folder.
        path = file["filename"].removeprefix("build/fuzz-lines/")
        if not path.startswith(("/", "..", "Fuzz/", "build/")):
            lines[path] = file["summary"]["lines"]
    readers = [f"{path} {lines[path]['covered']}/{lines[path]['count']}"
               for path in READERS.get(name, []) if path in lines]
    return name, ", ".join(readers), str(sum(one["covered"] for one in lines.values()))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("targets", nargs="*", metavar="TARGET", help="all, if none is named")
    parser.add_argument("--minutes", type=float, default=10, help="for each target")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="targets at a time")
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build" / "fuzz")
    parser.add_argument("--lines", action="store_true", help="count the lines that were reached")
    options = parser.parse_args()
    names = options.targets or targets_of(options.build)
    if not names:
        sys.exit(f"no targets in {options.build}/bin: build the preset fuzz first")
    if options.lines:
        print("| target | lines of what reads | lines in all |\n|---|---|---|")
        for name in names:
            print("| " + " | ".join(count_lines(name, options.build)) + " |", flush=True)
        return
    print("| target | inputs | edges | features | corpus | findings |\n|---|---|---|---|---|---|")
    has_findings = False
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for row in pool.map(lambda name: run(name, options.build, options.minutes), names):
            print("| " + " | ".join(row) + " |", flush=True)
            has_findings |= row[-1] != "none"
    sys.exit(1 if has_findings else 0)


if __name__ == "__main__":
    main()
