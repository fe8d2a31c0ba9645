"""scripts/setup with stand-ins for the package tools, which write down how they were called."""

import os
import pathlib
import subprocess
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "setup"
ALL_INSTALLED = 'shift 2; for package; do echo "installed $package"; done'
NO_MOLD = 'shift 2; for package; do [ $package = mold ] || echo "installed $package"; done; exit 1'


class Setup(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.bin = pathlib.Path(folder.name)
        self.calls = self.bin / "calls"
        self.calls.touch()
        for tool in ("env", "bash", "sh", "grep", "mktemp", "rm", "cat"):
            (self.bin / tool).symlink_to(pathlib.Path("/usr/bin") / tool)
        self.stand_in("id", "echo 0")
        self.stand_in("apt-get", "")

    def stand_in(self, tool, body):
        file = self.bin / tool
        file.write_text(f'#!/bin/sh\necho "{tool} $*" >> "{self.calls}"\n{body}\n')
        file.chmod(0o755)

    def run_setup(self, *arguments):
        run = subprocess.run(
            [SCRIPT, *arguments], env={"PATH": str(self.bin)}, cwd="/", stdin=subprocess.DEVNULL,
            capture_output=True, text=True)
        calls = [call for call in self.calls.read_text().splitlines() if call.startswith(("apt-get", "sudo"))]
        return run, calls

    def test_with_nothing_missing_apt_is_left_alone(self):
        self.stand_in("dpkg-query", ALL_INSTALLED)
        run, calls = self.run_setup()
        self.assertEqual((run.returncode, run.stdout, run.stderr, calls), (0, "", "", []))

    def test_only_what_is_missing_is_installed(self):
        self.stand_in("dpkg-query", NO_MOLD)
        run, calls = self.run_setup()
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual(len(run.stdout.splitlines()), 1)
        self.assertEqual(len(calls), 2)
        self.assertTrue(calls[0].endswith("update"))
        self.assertTrue(calls[1].endswith("install --no-install-recommends mold"))

    def test_the_run_group_leaves_the_tests_packages_out(self):
        self.stand_in("dpkg-query", "exit 1")
        _, calls = self.run_setup("run")
        self.assertIn("qt6-base-dev", calls[1])
        self.assertNotIn("libgtest-dev", calls[1])

    def test_without_root_and_sudo_one_sentence_names_the_packages(self):
        self.stand_in("dpkg-query", NO_MOLD)
        self.stand_in("id", "echo 1000")
        run, calls = self.run_setup()
        self.assertEqual((run.returncode, calls), (1, []))
        self.assertEqual(len(run.stderr.splitlines()), 1)
        self.assertIn("mold", run.stderr)

    def test_an_ordinary_user_goes_through_sudo_and_waits_for_no_password(self):
        self.stand_in("dpkg-query", NO_MOLD)
        self.stand_in("id", "echo 1000")
        self.stand_in("sudo", 'shift; exec "$@"')
        run, calls = self.run_setup()
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertEqual([call.split()[0] for call in calls], ["sudo", "apt-get"] * 2)
        self.assertTrue(calls[0].startswith("sudo -n "))

    def test_lists_that_cannot_be_refreshed_do_not_stop_an_install_that_works(self):
        self.stand_in("dpkg-query", NO_MOLD)
        self.stand_in("apt-get", 'case "$*" in *update) exit 100;; esac')
        run, _ = self.run_setup()
        self.assertEqual(run.returncode, 0, run.stderr)

    def test_a_failed_install_shows_apts_own_words(self):
        self.stand_in("dpkg-query", NO_MOLD)
        self.stand_in("apt-get", 'echo "E: no space" >&2; exit 100')
        run, _ = self.run_setup()
        self.assertNotEqual(run.returncode, 0)
        self.assertIn("E: no space", run.stderr)


if __name__ == "__main__":
    unittest.main()
