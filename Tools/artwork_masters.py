"""Reads the artwork masters: the theme, the screens, their controls, frames, lines and words.

A master is an SVG drawing of one screen. Every control is an element whose id is the control's
name and which has a data-kind attribute. Its rectangle is the control's frame, so moving a button
in the drawing moves it in the program.
"""

import copy
import json
import os
import re
import xml.etree.ElementTree as ElementTree

SVG = "http://www.w3.org/2000/svg"
XLINK = "http://www.w3.org/1999/xlink"
STATES = ("Normal", "Over", "Down", "Disable", "Active")
SCALES = ((1, ""), (2, "@2x"))

ElementTree.register_namespace("", SVG)
ElementTree.register_namespace("xlink", XLINK)


class ArtworkError(Exception):
    """An error in a master that the artist has to fix."""


def svgTag(name):
    return "{%s}%s" % (SVG, name)


def classesOf(element):
    return element.get("class", "").split()


def wholeNumber(text, where):
    try:
        value = float(text)
    except (TypeError, ValueError):
        raise ArtworkError("%s: \"%s\" is not a number" % (where, text)) from None
    if value != int(value):
        raise ArtworkError("%s: %s is not a whole number of pixels" % (where, text))
    return int(value)


def numbersIn(text):
    return [float(number) for number in re.findall(r"[-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?",
                                                   text)]


def plain(number):
    return str(int(number)) if number == int(number) else repr(number)


class Theme:
    """The shared style sheet and drawings."""

    def __init__(self, css, definitions):
        css = re.sub(r"/\*.*?\*/", "", css, flags=re.DOTALL)
        self.colors = {}
        self.rules = []
        for selectors, body in re.findall(r"([^{}]+)\{([^{}]*)\}", css):
            declarations = {}
            for declaration in filter(str.strip, body.split(";")):
                name, separator, value = declaration.partition(":")
                if not separator:
                    raise ArtworkError("theme.css: \"%s\" is no declaration" % declaration.strip())
                declarations[name.strip()] = value.strip()
            for selector in (part.strip() for part in selectors.split(",")):
                if selector == ":root":
                    for name, value in declarations.items():
                        self.colors[name.removeprefix("--")] = value
                else:
                    self.rules.append((selector, declarations))
        self.definitions = definitions

    def resolve(self, text, where):
        """Replaces each var(--name) in text with the color of that name."""

        def color(match):
            name = match.group(1)
            if name not in self.colors:
                raise ArtworkError("%s: there is no color --%s in theme.css" % (where, name))
            return self.colors[name]

        return re.sub(r"var\(--([A-Za-z0-9]+)\)", color, text)

    def styleSheet(self):
        lines = []
        for selector, declarations in self.rules:
            body = "; ".join("%s: %s" % item for item in declarations.items())
            lines.append("%s { %s; }" % (selector, self.resolve(body, "theme.css")))
        return "\n".join(lines)

    def wordStyle(self, name, state, where):
        """The declarations that apply to words of the class name in a state."""
        style = {}
        found = False
        for selector, declarations in self.rules:
            if selector == "." + name or selector == ".%s .%s" % (state, name):
                found = True
                style.update(declarations)
        if not found:
            raise ArtworkError("%s: there is no class .%s in theme.css" % (where, name))
        for needed in ("font-size", "fill"):
            if needed not in style:
                raise ArtworkError("theme.css: .%s has no %s" % (name, needed))
        style["fill"] = self.resolve(style["fill"], "theme.css")
        return style


class Frame:
    """A control's rectangle in pixels of its screen, and the radius of its corners."""

    def __init__(self, x, y, width, height, radius=0):
        self.x, self.y, self.width, self.height, self.radius = x, y, width, height, radius

    def isInside(self, width, height):
        return (self.width > 0 and self.height > 0 and self.x >= 0 and self.y >= 0 and
                self.x + self.width <= width and self.y + self.height <= height)

    def overlaps(self, other):
        return (self.x < other.x + other.width and other.x < self.x + self.width and
                self.y < other.y + other.height and other.y < self.y + self.height)

    def __repr__(self):
        return "%d,%d %dx%d" % (self.x, self.y, self.width, self.height)


class Control:
    def __init__(self, name, frame, page, overlay):
        self.name, self.frame, self.page, self.overlay = name, frame, page, overlay

    def mayMeet(self, other):
        """Whether both can be on the screen at the same time, each in a place of its own."""
        if self.overlay or other.overlay:
            return False
        return not (self.page and other.page and self.page != other.page)


class Screen:
    """One master or one variant of it: the drawing and its parsed contents."""

    def __init__(self, name, fileName, root, theme, expectedControls, expectedLines=(),
                 isSingle=False, startUp=()):
        self.name = name
        self.fileName = fileName
        self.root = root
        self.theme = theme
        self.width = wholeNumber(root.get("width"), "%s: width" % fileName)
        self.height = wholeNumber(root.get("height"), "%s: height" % fileName)
        box = numbersIn(root.get("viewBox", ""))
        if box != [0, 0, self.width, self.height]:
            raise ArtworkError("%s: the viewBox is not 0 0 %d %d" %
                               (fileName, self.width, self.height))
        self.parents = {child: parent for parent in root.iter() for child in parent}
        self.states = root.get("data-states", " ".join(STATES)).split()
        for state in self.states:
            if state not in STATES:
                raise ArtworkError("%s: there is no state \"%s\"" % (fileName, state))
        # A picture without states has the name of its master.
        self.isSingle = isSingle
        if isSingle:
            self.states = self.states[:1]
        # The views of such a screen change the whole picture with their state.
        self.isWhole = root.get("data-whole") == "yes"
        self.elements = self.readIds()
        self.controls = self.readControls(expectedControls)
        self.lines = self.readLines(expectedLines)
        self.words = self.readWords()
        # The names of those of its pictures that the program starts with.
        pictureNames = [self.pictureName(state) for state in self.states]
        self.startUp = [name for name in pictureNames if name in startUp]

    # Reading ------------------------------------------------------------------------------------

    def readIds(self):
        elements = {}
        for element in self.root.iter():
            name = element.get("id")
            if name is None:
                continue
            if name in elements:
                raise ArtworkError("%s: the id \"%s\" is there twice" % (self.fileName, name))
            elements[name] = element
        return elements

    def offsetOf(self, element):
        x, y = 0.0, 0.0
        while element is not None:
            transform = element.get("transform")
            if transform:
                match = re.fullmatch(r"\s*translate\(([^()]*)\)\s*", transform)
                numbers = numbersIn(match.group(1)) if match else []
                if len(numbers) not in (1, 2):
                    raise ArtworkError("%s: \"%s\" may only be moved, not \"%s\"" %
                                       (self.fileName, element.get("id", element.tag), transform))
                x += numbers[0]
                y += numbers[1] if len(numbers) == 2 else 0.0
            element = self.parents.get(element)
        return x, y

    def frameRectangle(self, element):
        if element.tag == svgTag("rect"):
            return element
        for child in element.iter(svgTag("rect")):
            if "frame" in classesOf(child):
                return child
        raise ArtworkError("%s: control \"%s\" has no rectangle of the class \"frame\"" %
                           (self.fileName, element.get("id")))

    def readControls(self, expected):
        found = {element.get("id"): element for element in self.root.iter()
                 if element.get("data-kind")}
        missing = [name for name in expected if name not in found]
        if missing:
            raise ArtworkError("%s: missing control%s %s" % (
                self.fileName, "s" if len(missing) > 1 else "",
                ", ".join("\"%s\"" % name for name in missing)))
        unknown = sorted(str(name) for name in found if name not in expected)
        if unknown:
            raise ArtworkError("%s: \"%s\" is no control of this screen" %
                               (self.fileName, unknown[0]))
        controls = []
        for name in expected:
            element = found[name]
            rectangle = self.frameRectangle(element)
            x, y = self.offsetOf(rectangle)
            where = "%s: control \"%s\"" % (self.fileName, name)
            frame = Frame(wholeNumber(float(rectangle.get("x", "0")) + x, where),
                          wholeNumber(float(rectangle.get("y", "0")) + y, where),
                          wholeNumber(rectangle.get("width"), where),
                          wholeNumber(rectangle.get("height"), where),
                          wholeNumber(rectangle.get("rx", "0"), where))
            if not frame.isInside(self.width, self.height):
                raise ArtworkError("%s (%s) is outside its screen of %dx%d" %
                                   (where, frame, self.width, self.height))
            controls.append(Control(name, frame, element.get("data-page", ""),
                                    element.get("data-overlay") == "yes"))
        for index, control in enumerate(controls):
            for other in controls[index + 1:]:
                if control.mayMeet(other) and control.frame.overlaps(other.frame):
                    raise ArtworkError("%s: controls \"%s\" (%s) and \"%s\" (%s) overlap" % (
                        self.fileName, control.name, control.frame, other.name, other.frame))
        return controls

    def controlFrame(self, name, where):
        for control in self.controls:
            if control.name == name:
                return control.frame
        raise ArtworkError("%s: there is no control \"%s\"" % (where, name))

    def pointsOf(self, element):
        """The corners of a connecting line, which consists of polylines, rectangles and uses of
        them."""
        if element.tag == svgTag("use"):
            target = (element.get("href") or element.get("{%s}href" % XLINK) or "")[1:]
            if target not in self.elements:
                raise ArtworkError("%s: there is nothing with the id \"%s\"" %
                                   (self.fileName, target))
            return self.pointsOf(self.elements[target])
        if element.tag == svgTag("polyline"):
            numbers = numbersIn(element.get("points", ""))
            return list(zip(numbers[0::2], numbers[1::2]))
        if element.tag == svgTag("rect"):
            x, y, width, height = (float(element.get(name, "0"))
                                   for name in ("x", "y", "width", "height"))
            return [(x, y), (x + width, y + height)]
        return [point for child in element for point in self.pointsOf(child)]

    def readLines(self, expected):
        lines = []
        for name in expected:
            if name not in self.elements:
                raise ArtworkError("%s: missing line \"%s\"" % (self.fileName, name))
            points = self.pointsOf(self.elements[name])
            if not points:
                raise ArtworkError("%s: line \"%s\" has no points" % (self.fileName, name))
            margin = 4
            left = max(0, int(min(x for x, _ in points)) - margin)
            top = max(0, int(min(y for _, y in points)) - margin)
            right = min(self.width, int(max(x for x, _ in points)) + 1 + margin)
            bottom = min(self.height, int(max(y for _, y in points)) + 1 + margin)
            lines.append((name, Frame(left, top, right - left, bottom - top)))
        return lines

    def readWords(self):
        words = []
        for element in self.root.iter(svgTag("text")):
            key = element.get("data-text-key")
            if key is None:
                raise ArtworkError("%s: the text \"%s\" has no data-text-key" %
                                   (self.fileName, "".join(element.itertext()).strip()))
            text = "\n".join(filter(None, (line.strip() for line in
                                           "".join(element.itertext()).split("\n"))))
            where = "%s: text \"%s\"" % (self.fileName, key or text)
            control = element.get("data-for", "")
            box = [wholeNumber(number, where) for number in element.get("data-box", "").split()]
            padding = [wholeNumber(number, where)
                       for number in element.get("data-padding", "8 8").split()]
            if len(box) == 4 and not control:
                frame = Frame(*box)
            elif control and not box and len(padding) in (2, 4):
                around = self.controlFrame(control, where)
                left, right, top, bottom = (padding + [0, 0])[:4]
                frame = Frame(around.x + left, around.y + top, around.width - left - right,
                              around.height - top - bottom)
            else:
                raise ArtworkError("%s needs either data-for or a data-box of x y width height" %
                                   where)
            if not frame.isInside(self.width, self.height):
                raise ArtworkError("%s (%s) is outside its screen" % (where, frame))
            align = element.get("data-align", "center")
            if align not in ("left", "center", "right"):
                raise ArtworkError("%s: \"%s\" is no alignment" % (where, align))
            names = [name for name in classesOf(element) if name.startswith("word")]
            if len(names) != 1:
                raise ArtworkError("%s needs one word class" % where)
            # Pictures of the other states are usually visible only inside the frames of controls.
            states = self.states if control or self.isWhole else self.states[:1]
            style = self.theme.wordStyle(names[0], states[0], where)
            words.append({
                "key": key,
                "text": text,
                "control": control,
                "x": frame.x, "y": frame.y, "width": frame.width, "height": frame.height,
                "fontSize": float(style["font-size"].removesuffix("px")),
                "fontWeight": int(style.get("font-weight", "400")),
                "align": align,
                "wrap": element.get("data-wrap") == "yes",
                "colors": {state: self.theme.wordStyle(names[0], state, where)["fill"]
                           for state in states},
            })
        return words

    # Drawing ------------------------------------------------------------------------------------

    def drawing(self, state):
        """A copy of the master in a state, including the shared style and drawings."""
        root = copy.deepcopy(self.root)
        root.set("class", state)
        where = self.fileName
        for element in root.iter():
            for name, value in element.attrib.items():
                if "var(" in value:
                    element.set(name, self.theme.resolve(value, where))
        # An outline straddles its rectangle. Half a pixel further in, it is crisp and stays within
        # the slice that the control shows.
        for element in root.iter():
            if element.get("data-kind"):
                rectangle = self.frameRectangle(element)
                for name, change in (("x", 0.5), ("y", 0.5), ("width", -1), ("height", -1)):
                    rectangle.set(name, plain(float(rectangle.get(name, "0")) + change))
        style = ElementTree.Element(svgTag("style"))
        style.text = self.theme.styleSheet()
        root.insert(0, style)
        root.insert(1, copy.deepcopy(self.theme.definitions))
        return root

    def pictureName(self, state):
        return self.name if self.isSingle else "%s_%s" % (self.name, state)

    @staticmethod
    def removeWhere(root, isUnwanted):
        for parent in list(root.iter()):
            for child in list(parent):
                if isUnwanted(child):
                    parent.remove(child)

    def picture(self, state, withWords=False):
        """The drawing of a state without words and lines. Only the Normal picture is shown whole,
        so the others contain only the controls, which makes their files small and fast to decode.
        A screen that changes as a whole has whole pictures in all states."""
        root = self.drawing(state)
        lines = {name for name, _ in self.lines}
        self.removeWhere(root, lambda element: element.get("id") in lines)
        if not withWords:
            self.removeWhere(root, lambda element: element.tag == svgTag("text"))
        if state != self.states[0] and not withWords and not self.isWhole:
            clip = ElementTree.Element(svgTag("clipPath"), {"id": "controlFrames"})
            for control in self.controls:
                if not control.overlay and not control.page:
                    frame = control.frame
                    ElementTree.SubElement(clip, svgTag("rect"), {
                        "x": str(frame.x), "y": str(frame.y),
                        "width": str(frame.width), "height": str(frame.height)})
            group = ElementTree.Element(svgTag("g"), {"clip-path": "url(#controlFrames)"})
            for child in list(root):
                if child.tag not in (svgTag("style"), svgTag("defs")):
                    root.remove(child)
                    group.append(child)
            root.append(clip)
            root.append(group)
        return root

    def linePicture(self, name):
        """One connecting line on a transparent picture of the screen's size."""
        root = self.drawing(self.states[0])
        for child in list(root):
            if child.tag not in (svgTag("style"), svgTag("defs")) and child.get("id") != name:
                root.remove(child)
        if not any(child.get("id") == name for child in root):
            raise ArtworkError("%s: line \"%s\" must stand at the top of the drawing" %
                               (self.fileName, name))
        return root

    def preview(self, state):
        """The picture with English words, for people to look at."""
        root = self.picture(state, withWords=True)
        for element, word in zip(root.iter(svgTag("text")), self.words):
            rows = word["text"].split("\n")
            size = word["fontSize"]
            anchor, x = {"left": ("start", word["x"]),
                         "center": ("middle", word["x"] + word["width"] / 2),
                         "right": ("end", word["x"] + word["width"])}[word["align"]]
            pitch = size * 1.5
            y = word["y"] + word["height"] / 2 + size * 0.364 - pitch * (len(rows) - 1) / 2
            element.text = None
            element.set("font-family", "Inter, sans-serif")
            element.set("text-anchor", anchor)
            for index, row in enumerate(rows):
                part = ElementTree.SubElement(element, svgTag("tspan"), {
                    "x": plain(x), "y": plain(round(y + index * pitch, 3))})
                part.text = row
        return root


def keepVariant(root, variant):
    Screen.removeWhere(root, lambda element: element.get("data-in") is not None and
                       variant not in element.get("data-in").split())


def parseSvg(path):
    try:
        return ElementTree.parse(path).getroot()
    except (OSError, ElementTree.ParseError) as error:
        raise ArtworkError("%s: %s" % (os.path.basename(path), error)) from None


def readTheme(folder):
    definitions = parseSvg(os.path.join(folder, "theme.svg")).find(svgTag("defs"))
    if definitions is None:
        raise ArtworkError("theme.svg: there are no defs")
    with open(os.path.join(folder, "theme.css"), encoding="utf-8") as file:
        return Theme(file.read(), definitions)


def readScreens(folder):
    """All screens of the masters that screens.json names, in its order."""
    theme = readTheme(folder)
    with open(os.path.join(folder, "screens.json"), encoding="utf-8") as file:
        wanted = json.load(file)
    screens = []
    for stem, content in wanted.items():
        fileName = stem + ".svg"
        root = parseSvg(os.path.join(folder, fileName))
        variants = content.get("variants")
        isSingle, startUp = content.get("single", False), content.get("startUp", ())
        if variants is None:
            ofMaster = [Screen(stem, fileName, root, theme, content["controls"],
                               content.get("lines", ()), isSingle, startUp)]
        else:
            ofMaster = []
            for variant, controls in variants.items():
                copied = copy.deepcopy(root)
                keepVariant(copied, variant)
                ofMaster.append(Screen(variant, "%s (%s)" % (fileName, variant), copied, theme,
                                       controls, isSingle=isSingle, startUp=startUp))
        for name in startUp:
            if not any(name in screen.startUp for screen in ofMaster):
                raise ArtworkError("%s: there is no picture \"%s\" to start with" %
                                   (fileName, name))
        screens += ofMaster
    return theme, screens
