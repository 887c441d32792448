#!/usr/bin/python3
"""Installs, upgrades and removes the .rpm packages of a build in a root of their own.

    tests/packaging/test_rpm.py BUILD-DIRECTORY [RpmTest]

Runs as root, in namespaces of its own (tests/desktop/isolated.sh) or in a bare root. Needs rpm, and rpmlint unless only
RpmTest is to run.
"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

from test_packages import (MAKERS_LIBRARY, PACKAGED_SETTINGS, PROGRAM_FILES, SECURE_FILES, SOME_DOCUMENTS,
                           VIRTUAL_PAD)

NAMES = ["mvsignpad", "mvsignpad-virtual", "mvsignpad-secure"]
LINT_SETTINGS = pathlib.Path(__file__).resolve().parents[2] / "packaging" / "rpmlint.toml"
# A library by its soname, a feature of rpm itself, the loader's hash table, and the one program.
REQUIREMENT = re.compile(r"lib[\w+]+\.so\.\d+\(.*\)\(64bit\)|ld-linux-.*\(64bit\)|rpmlib\(.*\) .*|rtld\(GNU_HASH\)|/usr/bin/pgrep")


def output(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, encoding="utf-8", check=True).stdout


class Packages:
    """The packages of the program, of the virtual pad and of the settings, as they are and as an older version."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="rpm-", dir=BUILD))
        self.old = self.make("0.9")
        self.new = self.make()

    def make(self, version=None):
        folder = self.folder / (version or "new")
        subprocess.run(["cpack", "-G", "RPM", "--config", BUILD / "CPackConfig.cmake", "-B", folder,
                        *(["-R", version] if version else [])], check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, cwd=BUILD)
        virtual, = folder.glob("mvsignpad-virtual-*.rpm")
        secure, = folder.glob("mvsignpad-secure-*.noarch.rpm")
        program, = set(folder.glob("mvsignpad-*.rpm")) - {virtual, secure}
        return [program, virtual, secure]


class RpmLintTest(unittest.TestCase):
    def test_rpmlint_finds_no_error(self):
        subprocess.run(["rpmlint", "--config", LINT_SETTINGS, *PACKAGES.new], check=True, stdout=subprocess.DEVNULL)


class RpmTest(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp(dir=PACKAGES.folder))
        self.rpm("--initdb")

    def rpm(self, *arguments):
        # The root holds no other package, so nothing there satisfies a requirement.
        return output("rpm", "--root", self.root, *arguments)

    def install(self, packages):
        self.rpm("--upgrade", "--nodeps", "--ignorearch", *packages)

    def at(self, path):
        return self.root / path.lstrip("/")

    def files(self, package):
        return {path for path in self.rpm("--query", "--list", package).split("\n") if path and not self.at(path).is_dir()}

    def test_same_files_as_the_debian_packages(self):
        self.install(PACKAGES.new)
        self.assertEqual(self.files("mvsignpad"), set(PROGRAM_FILES))
        virtual = self.files("mvsignpad-virtual")
        self.assertLessEqual({VIRTUAL_PAD, *SOME_DOCUMENTS}, virtual)
        self.assertEqual([path for path in virtual if path.startswith("/opt")], [])
        self.assertEqual(self.files("mvsignpad-secure"), set(SECURE_FILES))
        self.assertEqual(self.rpm("--verify", "--nodeps", *NAMES), "")

    def requirements(self, package):
        return output("rpm", "--query", "--requires", "--package", package).split("\n")[:-1]

    def test_requirements_fit_any_distribution(self):
        *programs, secure = PACKAGES.new
        for package in programs:
            self.assertIn("libQt5Core.so.5(Qt_5)(64bit)", self.requirements(package))
            self.assertEqual([name for name in self.requirements(package) if not REQUIREMENT.fullmatch(name)], [])
            self.assertNotIn("libmvsignpadsdk", output("rpm", "--query", "--provides", "--package", package))
        others = [name for name in self.requirements(secure) if not name.startswith("rpmlib(")]
        self.assertEqual([name.split()[:2] for name in others], [["mvsignpad", ">="]])

    def test_upgrade_and_removal_leave_the_makers_library(self):
        self.install(PACKAGES.old)
        self.assertEqual(self.rpm("--query", "--queryformat", "%{VERSION}", "mvsignpad"), "0.9")
        self.at(MAKERS_LIBRARY).write_text("the maker's")
        self.install(PACKAGES.new)
        self.assertNotEqual(self.rpm("--query", "--queryformat", "%{VERSION}", "mvsignpad"), "0.9")
        self.assertEqual(self.at(MAKERS_LIBRARY).read_text(), "the maker's")
        self.rpm("--erase", *NAMES)
        self.assertEqual([path.name for path in self.at("/opt/mvsignpad").iterdir()], ["libmvsignpadsdk.so"])
        self.assertFalse(self.at("/usr/bin/mvsignctl").exists())
        self.assertFalse(self.at(PACKAGED_SETTINGS).exists())


if __name__ == "__main__":
    BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
    PACKAGES = Packages()
    try:
        unittest.main(verbosity=2)
    finally:
        shutil.rmtree(PACKAGES.folder)
