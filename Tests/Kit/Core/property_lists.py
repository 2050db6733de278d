"""Writes and checks property lists and archives with Python's own library.

usage: property_lists.py COMMAND FILE
"""
import datetime
import plistlib
import sys

VALUES = {
    "OSDTag": True,
    "off": False,
    "Profile_1": 1,
    "negative": -1,
    "smallest": -(2**63),
    "largest": 2**64 - 1,
    "real": 1.5,
    "small": 1e-300,
    "date": datetime.datetime(2026, 11, 21, 3, 4, 5),
    "data": bytes(range(256)),
    "empty data": b"",
    "text": "Größe <&> \U0001f5b1 \"'",
    "blanks": "  a\tb\n c ",
    "empty text": "",
    "ä key": "ascii",
    "LinkApp": {"Profile_0": "/opt/a b", "IsActive_Profile_0": True, "none": {}},
    "list": [1, [2, [3, []]], {"a": ["b"]}, "same", "same"],
}


def song_archive():
    """The archive of a song with two notes, as Cocoa writes it."""
    uid = plistlib.UID
    return {
        "$version": 100000,
        "$archiver": "NSKeyedArchiver",
        "$top": {"root": uid(1)},
        "$objects": [
            "$null",
            {"$class": uid(8), "length": -7, "isLoud": True, "title": uid(2), "notes": uid(3),
             "last": uid(5)},
            "Lied \u00e4",
            {"$class": uid(7), "NS.objects": [uid(4), uid(5)]},
            {"$class": uid(6), "pitch": 440},
            {"$class": uid(6), "pitch": -2147483648},
            {"$classname": "Note", "$classes": ["Note", "NSObject"]},
            {"$classname": "NSMutableArray", "$classes": ["NSMutableArray", "NSArray", "NSObject"]},
            {"$classname": "Song", "$classes": ["Song", "NSObject"]},
        ],
    }


def as_cocoa_xml(node):
    """XML has no element for references."""
    if isinstance(node, plistlib.UID):
        return {"CF$UID": node.data}
    if isinstance(node, dict):
        return {key: as_cocoa_xml(value) for key, value in node.items()}
    if isinstance(node, list):
        return [as_cocoa_xml(value) for value in node]
    return node


def read_song(archive):
    """The song in an archive, assembled by following its references."""
    objects = archive["$objects"]

    def at(reference):
        assert isinstance(reference, plistlib.UID), reference
        return objects[reference.data]

    def of_class(entry, name):
        described = at(entry["$class"])
        assert described["$classname"] == name == described["$classes"][0], described
        assert described["$classes"][-1] == "NSObject", described
        return entry

    assert archive["$archiver"] == "NSKeyedArchiver" and archive["$version"] == 100000, archive
    assert objects[0] == "$null", objects
    song = of_class(at(archive["$top"]["root"]), "Song")
    notes = of_class(at(song["notes"]), "NSMutableArray")["NS.objects"]
    return {
        "length": song["length"],
        "isLoud": song["isLoud"],
        "title": at(song["title"]),
        "notes": [of_class(at(note), "Note")["pitch"] for note in notes],
        "last": of_class(at(song["last"]), "Note")["pitch"],
    }


SONG = {"length": -7, "isLoud": True, "title": "Lied \u00e4", "notes": [440, -2147483648],
        "last": -2147483648}


def main():
    command, path = sys.argv[1:]
    if command == "check":
        with open(path, "rb") as file:
            held = plistlib.load(file)
        assert held == VALUES, held
        assert all(type(held[key]) is type(VALUES[key]) for key in VALUES), held
    elif command == "check-song":
        with open(path, "rb") as file:
            held = read_song(plistlib.load(file, fmt=plistlib.FMT_BINARY))
        assert held == SONG, held
    else:
        content, form = {
            "write-xml": (VALUES, plistlib.FMT_XML),
            "write-binary": (VALUES, plistlib.FMT_BINARY),
            "write-song-xml": (as_cocoa_xml(song_archive()), plistlib.FMT_XML),
            "write-song-binary": (song_archive(), plistlib.FMT_BINARY),
        }[command]
        with open(path, "wb") as file:
            plistlib.dump(content, file, fmt=form)


if __name__ == "__main__":
    main()
