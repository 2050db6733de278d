"""What the tests of a whole program on a Wayland desktop have besides those of any desktop."""

from window_test import DESKTOP_SIZE, MAIN_SIZE, DemoTest, crop, middle, wait_until
from wayland_session import WaylandSession

# Where the user puts the two windows.
PANEL_LEFT = MAIN_SIZE[0] + 16
# The height of the strip below a list's button by which an open list is recognized.
STRIP = 8


class OnSway:
    """Makes a test of windows one on this desktop."""

    # Lines of the compositor's configuration.
    bindings = ""

    def newDesktop(self):
        return WaylandSession(self.folder, DESKTOP_SIZE, bindings=self.bindings)


class OnWayland(OnSway, DemoTest):
    def standApart(self):
        # A program cannot place its windows.
        self.desktop.place(self.window, 0, 0)
        self.desktop.place(self.panel, PANEL_LEFT, 0)
        self.desktop.activate(self.window)

    def openList(self, window, opener):
        """Opens the list of a button, whose frame this is. A list is no window of its own here, so
        it is known by the place below its button. Returns a function: whether the list is gone."""
        x, y, width, height = opener

        def below():
            return crop(self.desktop.picture(window), (x, y + height + 1, width, STRIP))
        before = below()
        self.desktop.click(window, *middle(opener))
        wait_until(lambda: below() != before, 30, "the list")
        return lambda: below() == before

    def chooseRow(self, window, opener, row, count, width):
        isGone = self.openList(window, opener)
        self.desktop.key("Home", *["Down"] * row, "Return")
        wait_until(isGone, 30, "the list to go")
