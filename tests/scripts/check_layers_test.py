"""scripts/check-layers on small trees with one planted include each."""

import pathlib
import subprocess
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "check-layers"


class CheckLayers(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="a folder's layers ")
        self.addCleanup(folder.cleanup)
        self.src = pathlib.Path(folder.name)
        self.plant("base/Instant.h", "#include <compare>")
        self.plant("ports/Clock.h", '#include "base/Instant.h"')
        self.plant("rig/Transport.h", '#include "ports/Clock.h"')

    def plant(self, path, *lines):
        file = self.src / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text("\n".join(lines) + "\n")

    def run_script(self):
        return subprocess.run([SCRIPT, self.src], capture_output=True, text=True)

    def assertHolds(self):
        run = self.run_script()
        self.assertEqual(run.returncode, 0, run.stderr)

    def assertFaults(self, *expected):
        run = self.run_script()
        self.assertNotEqual(run.returncode, 0, run.stdout)
        lines = run.stderr.splitlines()
        self.assertEqual(len(lines), len(expected), run.stderr)
        for line, part in zip(lines, expected):
            self.assertIn(part, line)

    def test_a_tree_in_order_passes(self):
        self.plant("platform/Linux.cpp", "#include <QTimer>", "#include <sys/timerfd.h>", '#include "Linux.h"')
        self.plant("platform/Linux.h", '#include "ports/Clock.h"')
        self.plant("cli/Rehearse.cpp", '#include "platform/virtual/VirtualClock.h"')
        self.plant("platform/virtual/VirtualClock.h", '#include "ports/Clock.h"')
        self.plant("cameras/canon/Edsdk.cpp", '#include "cameras/Body.h"', '#include "Edsdk.h"')
        self.plant("cameras/canon/Edsdk.h", "#include <absl/strings/str_format.h>")
        self.plant("main.cpp", "#include <QCoreApplication>", "#include <unistd.h>", '#include "cli/Rehearse.h"')
        self.assertHolds()

    def test_an_upward_include_is_named_with_its_line(self):
        self.plant("base/Text.cpp", "#include <string>", "", '  # include "rig/Transport.h"')
        self.assertFaults("base/Text.cpp:3")

    def test_the_edges_that_the_order_alone_would_allow_are_refused(self):
        self.plant("analysis/Report.cpp", '#include "cameras/Body.h"')
        self.plant("eclipse/Besselian.cpp", '#include "ports/Clock.h"')
        self.plant("platform/Loop.cpp", '#include "rig/Transport.h"')
        self.assertFaults("analysis may not", "eclipse may not", "platform may not")

    def test_the_run_engines_folders_are_layers_of_their_own(self):
        self.plant("rig/RigModel.h", '#include "rig/site/SiteDesk.h"')
        self.plant("rig/RigModel.cpp", '#include "rig/fire/FireLoop.h"', '#include "rig/site/SiteDesk.h"')
        self.plant("rig/fire/FireLoop.h", '#include "rig/site/SiteDesk.h"', '#include "FireScan.h"')
        self.plant("rig/fire/FireScan.h", "#include <span>")
        self.plant("rig/site/SiteDesk.h", '#include "rig/shared/RigLog.h"')
        self.plant("rig/shared/RigLog.h", "#include <string>")
        self.plant("ui/Clock.h", '#include "rig/fire/FireLoop.h"')
        self.assertHolds()
        self.plant("rig/site/SiteBook.cpp", '#include "rig/fire/FireLoop.h"')
        self.plant("rig/site/SiteStore.cpp", '#include "../RigModel.h"')
        self.plant("rig/new/Thing.cpp", "#include <string>")
        self.plant("cameras/Body.h", '#include "rig/shared/RigLog.h"')
        self.assertFaults(
            "cameras may not include rig/shared",
            "rig/new is not in the table",
            "rig/site may not include rig/fire",
            "rig/site may not include rig",
        )

    def test_a_way_around_the_spelling_does_not_help(self):
        self.plant("base/A.cpp", '#include "../rig/Transport.h"')
        self.plant("base/B.cpp", "#include <rig/Transport.h>")
        self.plant("base/C.cpp", "#include RIG_HEADER")
        self.plant("base/D.cpp", '#include "unistd.h"')
        self.assertFaults("rig", "rig", "spelled out", "base/D.cpp:1")

    def test_qt_stays_in_platform_and_ui(self):
        self.plant("cli/List.cpp", "#include <QString>")
        self.plant("platform/virtual/Loop.cpp", "#include <QtCore/QTimer>")
        self.plant("rig/Desk.cpp", "#include <qglobal.h>")
        self.plant("ui/Window.cpp", "#include <QtQuick/QQuickWindow>")
        self.assertFaults("cli/List.cpp", "platform/virtual/Loop.cpp", "rig/Desk.cpp")

    def test_the_operating_system_stays_in_platform(self):
        self.plant("services/Post.cpp", "#include <sys/socket.h>", "#include <cerrno>")
        self.plant("ui/Window.cpp", "#include <unistd.h>")
        self.assertFaults("services/Post.cpp:1", "ui/Window.cpp:1")

    def test_a_folder_that_the_table_does_not_know_is_a_fault(self):
        self.plant("helpers/Misc.h", "#include <string>")
        self.assertFaults("helpers/Misc.h")

    def test_a_tree_without_includes_proves_nothing(self):
        with tempfile.TemporaryDirectory() as empty:
            run = subprocess.run([SCRIPT, empty], capture_output=True, text=True)
            self.assertNotEqual(run.returncode, 0)


if __name__ == "__main__":
    unittest.main()
