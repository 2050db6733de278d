"""The windows on a Wayland desktop: the same jobs as on an X server, by real clicks and keys."""

import unittest

import KeyAssignTest
import MacroRecordingTest
import MainWindowTest
from wayland_test import OnWayland


class MainJob(OnWayland, MainWindowTest.MainJob):
    pass


class RecordedMacro(OnWayland, KeyAssignTest.RecordedMacro):
    pass


class RecordedClicks(OnWayland, MacroRecordingTest.RecordedClicks):
    pass


if __name__ == "__main__":
    unittest.main()
