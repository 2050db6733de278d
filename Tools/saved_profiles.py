"""The profile files of a support folder, read byte by byte."""

import os

# Offsets in a profile file: the name, whether a program is linked, the program's path. Both texts
# are fields of 256 bytes that end with a zero.
NAME, IS_LINKED, PROGRAM = 9, 5000, 5001


def linkedPrograms(support):
    """{name of a saved profile: the program that it is linked to; None if it is to none}."""
    folder = os.path.join(support, "Profiles")
    found = {}
    for name in os.listdir(folder):
        with open(os.path.join(folder, name), "rb") as file:
            data = file.read()
        title, path = (data[start:start + 256].split(b"\0")[0].decode()
                       for start in (NAME, PROGRAM))
        found[title] = path if data[IS_LINKED] else None
    return found
