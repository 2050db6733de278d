#!/usr/bin/env python3
"""Runs the fuzz targets, each for the same time, and prints a table of what they reached.

    cmake --preset fuzz && cmake --build --preset fuzz
    Tools/run_fuzzers.py --minutes 10 [TARGET...]

What a target finds new stays in build/fuzz/found/TARGET, so that the next run begins where this one
ended. An input that ends the program lies beside it as crash-*, timeout-* or oom-*.
"""

import argparse
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
LARGEST_INPUT = 1 << 16
SECONDS_PER_INPUT = 10
MEGABYTES = 2048


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


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("targets", nargs="*", metavar="TARGET", help="all, if none is named")
    parser.add_argument("--minutes", type=float, default=10, help="for each target")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="targets at a time")
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build" / "fuzz")
    options = parser.parse_args()
    names = options.targets or targets_of(options.build)
    if not names:
        sys.exit(f"no targets in {options.build}/bin: build the preset fuzz first")
    print("| target | inputs | edges | features | corpus | findings |\n|---|---|---|---|---|---|")
    has_findings = False
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for row in pool.map(lambda name: run(name, options.build, options.minutes), names):
            print("| " + " | ".join(row) + " |", flush=True)
            has_findings |= row[-1] != "none"
    sys.exit(1 if has_findings else 0)


if __name__ == "__main__":
    main()
