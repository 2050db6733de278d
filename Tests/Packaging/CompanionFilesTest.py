"""The files that start the companion: one program, one bus name, and a bus that starts it.

Called as CompanionFilesTest.py FOLDER PROGRAM, FOLDER being where the build has made the files.
"""

import configparser
import os
import subprocess
import sys
import tempfile
import unittest

PROGRAM = os.path.abspath(sys.argv.pop(2))
FOLDER = os.path.abspath(sys.argv.pop(1))
NAME = "com.corvex.NerinOption.Companion"


def read(name):
    # systemd allows a key twice.
    parser = configparser.RawConfigParser(strict=False, interpolation=None)
    parser.optionxform = str
    with open(os.path.join(FOLDER, name), encoding="utf-8") as file:
        parser.read_file(file)
    return parser


class CompanionFiles(unittest.TestCase):
    def testAllOfThemStartTheSameProgram(self):
        program = read("nerin-companion.service")["Service"]["ExecStart"]
        self.assertEqual(os.path.basename(program), os.path.basename(PROGRAM))
        self.assertEqual(read("nerin-companion.desktop")["Desktop Entry"]["Exec"], program)
        self.assertEqual(read(NAME + ".service")["D-BUS Service"]["Exec"], program)

    def testAllOfThemMeanTheSameName(self):
        activation = read(NAME + ".service")["D-BUS Service"]
        self.assertEqual(activation["Name"], NAME)
        self.assertEqual(activation["SystemdService"], "nerin-companion.service")
        self.assertEqual(read("nerin-companion.service")["Service"]["BusName"], NAME)

    def testTheServiceManagerStartsItOnce(self):
        entry = read("nerin-companion.desktop")["Desktop Entry"]
        self.assertEqual(entry["X-systemd-skip"], "true")

    def testTheBusStartsIt(self):
        with tempfile.TemporaryDirectory(prefix="nerin-companion-") as folder:
            services = os.path.join(folder, "services")
            os.makedirs(services)
            with open(os.path.join(FOLDER, NAME + ".service"), encoding="utf-8") as file:
                lines = file.read().splitlines()
            with open(os.path.join(services, NAME + ".service"), "w", encoding="utf-8") as file:
                for line in lines:
                    # The program of this build, on a bus without a service manager.
                    if line.startswith("Exec="):
                        line = "Exec=" + PROGRAM
                    if not line.startswith("SystemdService="):
                        file.write(line + "\n")
            configuration = os.path.join(folder, "bus.conf")
            with open(configuration, "w", encoding="utf-8") as file:
                file.write("""<busconfig><type>session</type>
<listen>unix:dir=%s</listen><servicedir>%s</servicedir>
<policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/>
<allow own="*"/></policy></busconfig>""" % (folder, services))
            environment = {"HOME": folder, "XDG_RUNTIME_DIR": folder, "PATH": os.environ["PATH"]}
            answer = subprocess.run(
                ["dbus-run-session", "--config-file=" + configuration, "--", "gdbus", "call",
                 "--session", "--dest", NAME, "--object-path", "/" + NAME.replace(".", "/"),
                 "--method", "org.freedesktop.DBus.Properties.Get", NAME, "Explanation"],
                env=environment, stdout=subprocess.PIPE, timeout=60, check=True)
            self.assertEqual(answer.stdout.decode(), "(<'No mouse is there'>,)\n")


if __name__ == "__main__":
    unittest.main()
