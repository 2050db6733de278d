"""What the steps of the test of the packages share: how they speak, and how they fail."""

import subprocess


class Failure(Exception):
    pass


def say(words):
    print("packages: " + words, flush=True)


def require(isSo, words):
    if not isSo:
        raise Failure(words)


def output(*command, **options):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, **options).stdout


def filesOf(folder):
    return sorted(path for path in folder.rglob("*") if path.is_file() and not path.is_symlink())
