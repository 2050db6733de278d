#!/usr/bin/env python3
"""Compiles the artwork masters into what the program loads.

Writes the state pictures of each master at 1x and 2x, the pictures of the connecting lines, a C++
header with the frames, and a JSON file for each screen with its words, which are not rendered
because they depend on the user's language. The pictures that the program starts with are also
written decoded.
"""

import argparse
import json
import os
import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
from concurrent.futures import ThreadPoolExecutor

from artwork_masters import SCALES, ArtworkError, Frame, parseSvg, readScreens


def checkKeys(screens, catalogue):
    """Every word must be in the first language, because all others fall back to it."""
    language = parseSvg(catalogue).find("Lan")
    known = {item.get("name") for item in language.iter("Item")} if language is not None else set()
    for screen in screens:
        for word in screen.words:
            if word["key"] and word["key"] not in known:
                raise ArtworkError("%s: the text key \"%s\" is not in %s" %
                                   (screen.fileName, word["key"], os.path.basename(catalogue)))


# Output -----------------------------------------------------------------------------------------


def header(theme, screens):
    lines = [
        "// Written by the artwork compiler from the masters; change the masters instead.",
        "#pragma once",
        "",
        "#include <array>",
        "#include <cstdint>",
        "#include <string_view>",
        "",
        "/// The frames of the controls: pixels at 1x from the top left corner of the screen.",
        "/// Colors are 0xRRGGBB.",
        "namespace Artwork {",
        "",
        "struct Frame {",
        "  int x;",
        "  int y;",
        "  int width;",
        "  int height;",
        "  int radius;",
        "};",
        "",
        "struct NamedFrame {",
        "  std::string_view name;",
        "  Frame frame;",
        "};",
        "",
        "namespace Color {",
    ]
    for name, value in theme.colors.items():
        if not re.fullmatch(r"#[0-9A-Fa-f]{6}", value):
            raise ArtworkError("theme.css: --%s is not a color of six digits" % name)
        lines.append("inline constexpr std::uint32_t %s = 0x%s;" % (name, value[1:].upper()))
    lines.append("}  // namespace Color")

    def table(kind, rows):
        lines.append("  static constexpr std::array<NamedFrame, %d> %s{{" % (len(rows), kind))
        lines.extend("      {\"%s\", %s}," % row for row in rows)
        lines.append("  }};")

    def braces(frame):
        return "{%d, %d, %d, %d, %d}" % (frame.x, frame.y, frame.width, frame.height, frame.radius)

    # A screen is a type, so that a template can be written for screens that share their controls.
    for screen in screens:
        lines += ["", "struct %s {" % screen.name,
                  "  static constexpr int screenWidth = %d;" % screen.width,
                  "  static constexpr int screenHeight = %d;" % screen.height]
        lines += ["  static constexpr Frame %s%s;" % (control.name, braces(control.frame))
                  for control in screen.controls]
        if screen.controls:
            table("controls", [(control.name, control.name) for control in screen.controls])
        if screen.lines:
            table("lines", [(name, braces(frame)) for name, frame in screen.lines])
        lines.append("};")
    startUp = [name for screen in screens for name in screen.startUp]
    lines += ["", "/// The pictures that the program starts with.",
              "inline constexpr std::array<std::string_view, %d> startUpPictures{" % len(startUp)]
    lines += ["    \"%s\"," % name for name in startUp]
    lines += ["};", "", "}  // namespace Artwork", ""]
    return "\n".join(lines)


def wordsJson(screen):
    return json.dumps({"states": screen.states, "words": screen.words}, ensure_ascii=False) + "\n"


def writeWords(folder, screens):
    """A file for each screen with words: the program reads those of one screen at a time."""
    os.makedirs(folder, exist_ok=True)
    contents = {screen.name + ".json": wordsJson(screen) for screen in screens if screen.words}
    for name in os.listdir(folder):
        if name not in contents:
            os.remove(os.path.join(folder, name))
    for name, content in contents.items():
        writeIfChanged(os.path.join(folder, name), content.encode())


def writeIfChanged(path, content):
    """Does not touch a file that is already right, to avoid needless builds. Another one is
    replaced, because a program that runs may have mapped it."""
    os.makedirs(os.path.dirname(os.path.abspath(path)), exist_ok=True)
    try:
        with open(path, "rb") as file:
            if file.read() == content:
                return
    except OSError:
        pass
    with open(path + ".new", "wb") as file:
        file.write(content)
    os.replace(path + ".new", path)


def piped(command, content, what):
    """The output of a program that reads content."""
    try:
        result = subprocess.run(command, input=content, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, check=False)
    except OSError as error:
        raise ArtworkError("%s cannot be run: %s" % (command[0], error.strerror)) from None
    if result.returncode != 0 or not result.stdout:
        raise ArtworkError("%s: %s" % (what, result.stderr.decode(errors="replace").strip()))
    return result.stdout


def render(root, path, scale, pngFilter=None):
    """Writes a picture and returns its PNG."""
    what = os.path.basename(path)
    picture = piped(["rsvg-convert", "--zoom", str(scale), "--format", "png"],
                    ElementTree.tostring(root, encoding="utf-8"), what)
    if pngFilter:
        picture = piped([pngFilter], picture, what)
    writeIfChanged(path, picture)
    return picture


def pictures(screens):
    """The file name and drawing of every picture, at 1x."""
    for screen in screens:
        for state in screen.states:
            yield screen.pictureName(state), screen.picture, (state,)
        for name, _ in screen.lines:
            yield name, screen.linePicture, (name,)


def renderAll(screens, folder, jobs, only=None, pngFilter=None, decoder=None):
    startUp = {name for screen in screens for name in screen.startUp}

    def one(item):
        name, draw, arguments = item
        root = draw(*arguments)
        path = os.path.join(folder, name)
        for scale, suffix in SCALES:
            picture = render(root, path + suffix + ".png", scale, pngFilter)
            if decoder and scale == 1 and name in startUp:
                writeIfChanged(path + ".decoded", piped([decoder], picture, name))

    chosen = [item for item in pictures(screens)
              if only is None or re.fullmatch(only, item[0])]
    with ThreadPoolExecutor(max_workers=jobs) as pool:
        list(pool.map(one, chosen))


def main(arguments=None):
    parser = argparse.ArgumentParser(description="Compiles the artwork masters.")
    parser.add_argument("artwork", help="folder with screens.json, theme.css and the masters")
    parser.add_argument("--pictures", help="folder for the pictures")
    parser.add_argument("--header", help="C++ header with the frames")
    parser.add_argument("--words", help="folder for the JSON files with the words")
    parser.add_argument("--catalogue", help="Tooltip.xml that must have every word")
    parser.add_argument("--png-filter", help="program that every picture is piped through")
    parser.add_argument("--decoder", help="program that decodes the pictures of the start")
    parser.add_argument("--list", action="store_true", help="print the names of the pictures")
    parser.add_argument("--only", help="render only pictures whose name matches this expression")
    parser.add_argument("--preview", help="folder for pictures with English words, for people")
    parser.add_argument("--jobs", type=int, default=2, help="pictures rendered at the same time")
    options = parser.parse_args(arguments)
    try:
        theme, screens = readScreens(options.artwork)
        if options.catalogue:
            checkKeys(screens, options.catalogue)
        if options.header:
            writeIfChanged(options.header, header(theme, screens).encode())
        if options.words:
            writeWords(options.words, screens)
        if options.list:
            for name, _, _ in pictures(screens):
                for _, suffix in SCALES:
                    print(name + suffix + ".png")
        if options.pictures:
            renderAll(screens, options.pictures, options.jobs, options.only,
                      options.png_filter, options.decoder)
        if options.preview:
            for screen in screens:
                for state in screen.states:
                    name = screen.pictureName(state)
                    if options.only is None or re.fullmatch(options.only, name):
                        render(screen.preview(state),
                               os.path.join(options.preview, name + ".png"), 1)
    except (ArtworkError, OSError) as error:
        print("compile_artwork: %s" % error, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
