#!/usr/bin/python3
"""Installs the packages of a build into a clean root, runs the program there, and removes them again.

    tests/packaging/test_packages.py BUILD-DIRECTORY

Runs as root in namespaces of its own (tests/desktop/isolated.sh). Needs Xvfb, trayer, lintian, desktop-file-utils.
"""
import configparser
import os
import pathlib
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import unittest

import clean_root

PROGRAM_FILES = """
/opt/mvsignpad/mvsignpadsdk_wssvr
/opt/mvsignpad/mvsignpadsdk_wssvr.ico
/usr/bin/mvsignctl
/usr/share/applications/com.morvane.mvsignpaddriver.desktop
/usr/share/applications/mvsignpaddriver-kylin.desktop
/usr/share/applications/mvsignpaddriver-neokylin.desktop
/usr/share/applications/mvsignpaddriver-nfs.desktop
/usr/share/bash-completion/completions/mvsignctl
/usr/share/doc/mvsignpad/changelog.gz
/usr/share/doc/mvsignpad/copyright
/usr/share/icons/hicolor/48x48/apps/mvsignpadsdk_wssvr.png
/usr/share/icons/hicolor/scalable/apps/mvsignpadsdk_wssvr.svg
/usr/share/lintian/overrides/mvsignpad
/usr/share/man/man1/mvsignctl.1.gz
/usr/share/man/zh_CN/man1/mvsignctl.1.gz
""".split()
VIRTUAL_PAD = "/usr/lib/mvsignpad/virtual/libmvsignpadsdk.so"
SOME_DOCUMENTS = ["/usr/share/doc/mvsignpad-virtual/" + name for name in (
    "README.md", "README.zh-CN.md", "changelog.gz", "copyright", "docs/api.md", "docs/install.md", "docs/zh/install.md",
    "web/signpad.js", "web/demo/index.html")]
PACKAGED_SETTINGS = "/usr/share/mvsignpadsdk/MVSignPadSDK_Access.conf"
SECURE_FILES = [PACKAGED_SETTINGS, "/usr/share/doc/mvsignpad-secure/changelog.gz",
                "/usr/share/doc/mvsignpad-secure/copyright"]
MAKERS_LIBRARY = "/opt/mvsignpad/libmvsignpadsdk.so"

NAMES = {"name": "MVSign Pad Driver", "name[zh_cn]": "Morvane电子签名板驱动程序",
         "name[zh_tw]": "Morvane電子簽名板驅動程式"}
KEYWORDS = {
    "keywords": "signature;handwriting;pad;tablet;WPS;",
    "keywords[zh_cn]": "签名;电子签名;签名板;手写签名;WPS;",
    "keywords[zh_tw]": "簽名;電子簽名;簽名板;手寫簽名;WPS;",
}
COMMENTS = {"comment": "Lets web pages and WPS Office capture handwritten signatures from a signature pad",
            "comment[zh_cn]": "让网页和WPS办公软件通过电子签名板采集手写签名",
            "comment[zh_tw]": "讓網頁和WPS辦公軟體透過電子簽名板擷取手寫簽名"}
NO_DISPLAY = {"com.morvane.mvsignpaddriver.desktop": "false", "mvsignpaddriver-kylin.desktop": "true",
              "mvsignpaddriver-neokylin.desktop": "true", "mvsignpaddriver-nfs.desktop": "true"}

ENVIRONMENT = {"PATH": "/usr/sbin:/usr/bin", "LC_ALL": "C.UTF-8", "HOME": "/root", "XDG_RUNTIME_DIR": "/root"}
PORT = 18089
SETTINGS = f"[Settings]\nStartWebService=true\nWebSocketPort={PORT}\n"


def wait_for(condition, seconds=60):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            raise TimeoutError
        time.sleep(0.1)


def is_listening():
    with socket.socket() as probe:
        return probe.connect_ex(("127.0.0.1", PORT)) == 0


class PackagesTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.work = pathlib.Path(tempfile.mkdtemp(prefix="packages-", dir=BUILD))
        cls.addClassCleanup(shutil.rmtree, cls.work)
        subprocess.run(["cpack", "--config", BUILD / "CPackConfig.cmake", "-B", cls.work], check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, cwd=BUILD)
        cls.program, = cls.work.glob("mvsignpad_*.deb")
        cls.virtual, = cls.work.glob("mvsignpad-virtual_*.deb")
        cls.secure, = cls.work.glob("mvsignpad-secure_*_all.deb")
        cls.root = cls.work / "root"
        cls.root.mkdir(mode=0o755)
        depends = ", ".join(clean_root.output("dpkg-deb", "-f", package, "Depends").strip()
                            for package in (cls.program, cls.virtual))
        clean_root.make(cls.root, depends, clean_root.output("dpkg-deb", "-f", cls.program, "Architecture").strip())
        cls.mount("-t", "proc", "proc", "/proc")
        for device in ("/dev/null", "/dev/urandom"):
            (cls.root / device.lstrip("/")).touch()
            cls.mount("--bind", device, device)

    @classmethod
    def mount(cls, *arguments):
        target = cls.root / arguments[-1].lstrip("/")
        subprocess.run(["mount", *arguments[:-1], target], check=True)
        cls.addClassCleanup(subprocess.run, ["umount", target], check=True)

    def setUp(self):
        self.before = self.snapshot()

        self.addCleanup(self.check_that_removal_leaves_no_trace)

    def at(self, path):
        return self.root / path.lstrip("/")

    def dpkg(self, *arguments):
        return subprocess.run(["dpkg", f"--root={self.root}", "--path-include=*", *arguments], check=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, encoding="utf-8").stdout

    def check_that_removal_leaves_no_trace(self):
        self.dpkg("--purge", "mvsignpad", "mvsignpad-virtual", "mvsignpad-secure")
        self.assertEqual(self.snapshot() ^ self.before, set())

    def snapshot(self):
        """Everything in the root but dpkg's own records and what users and the system keep for themselves."""
        others = [self.at(path) for path in ("/var/lib/dpkg", "/var/log", "/var/cache", "/root", "/tmp", "/proc", "/dev")]
        found = set()
        for folder, folders, files in os.walk(self.root):
            folders[:] = [name for name in folders if pathlib.Path(folder, name) not in others]
            found.update(os.path.join(folder, name) for name in folders + files)
        return found

    def listed(self, package):
        """The files, without the directories, that dpkg says the package has brought."""
        paths = self.dpkg("--listfiles", package).split("\n")
        return {path for path in paths if path and not self.at(path).is_dir()}

    def in_root(self, *command, env=None):
        return subprocess.run(["chroot", self.root, *command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              encoding="utf-8", timeout=60, env=env or ENVIRONMENT)

    def test_lintian_finds_no_error(self):
        subprocess.run(["lintian", "--fail-on", "error", self.program, self.virtual, self.secure],
                       check=True,
                       stderr=subprocess.DEVNULL)

    def test_program_package_brings_its_files_and_no_library(self):
        self.dpkg("--install", self.program)
        self.assertEqual(self.listed("mvsignpad"), set(PROGRAM_FILES))
        self.assertTrue(os.access(self.at("/opt/mvsignpad/mvsignpadsdk_wssvr"), os.X_OK))
        self.assertTrue(os.access(self.at("/usr/bin/mvsignctl"), os.X_OK))

    def test_virtual_package_stays_out_of_the_programs_directory(self):
        self.dpkg("--install", self.virtual)
        files = self.listed("mvsignpad-virtual")
        self.assertEqual({path for path in files if not path.startswith("/usr/share/doc/mvsignpad-virtual/")},
                         {VIRTUAL_PAD})
        self.assertLessEqual(set(SOME_DOCUMENTS), files)
        self.assertFalse(self.at("/opt").exists())

    def access(self):
        """Whom the installed program serves, as its doctor tells it."""
        lines = self.in_root("mvsignctl", "doctor").stdout.splitlines()
        return next(line for line in lines if line[5:].startswith("access settings: "))

    def test_secure_package_closes_the_doors_until_it_is_removed(self):
        self.dpkg("--install", self.program)
        before = self.access()
        self.assertIn("every machine that reaches the port", before)
        self.dpkg("--install", self.secure)
        self.assertEqual(self.listed("mvsignpad-secure"), set(SECURE_FILES))
        closed = self.access()
        self.assertIn("who reaches 127.0.0.1", closed)
        self.assertIn("pages when the user allows it", closed)
        self.assertIn("files below /tmp", closed)
        self.dpkg("--remove", "mvsignpad-secure")
        self.assertEqual(self.access(), before)

    def test_administrators_settings_go_before_the_packaged_ones_and_stay(self):
        self.dpkg("--install", self.program)
        own = self.at("/etc/xdg/mvsignpadsdk/MVSignPadSDK_Access.conf")
        own.parent.mkdir(parents=True)
        self.addCleanup(os.removedirs, own.parent)
        self.addCleanup(own.unlink)
        own.write_text("[Access]\nSaveFolders=/srv\n")
        self.dpkg("--install", self.secure)
        self.assertIn("who reaches 127.0.0.1", self.access())
        self.assertIn("files below /srv", self.access())
        self.dpkg("--remove", "mvsignpad-secure")
        self.assertEqual(own.read_text(), "[Access]\nSaveFolders=/srv\n")
        self.assertIn("every machine that reaches the port", self.access())

    def test_desktop_entries(self):
        self.dpkg("--install", self.program)
        folder = self.at("/usr/share/applications")
        self.assertEqual({path.name for path in folder.iterdir()}, set(NO_DISPLAY))
        for name, no_display in NO_DISPLAY.items():
            subprocess.run(["desktop-file-validate", folder / name], check=True)
            entry = configparser.ConfigParser(interpolation=None)
            entry.read(folder / name, encoding="utf-8")
            values = dict(entry["Desktop Entry"])
            self.assertEqual({key: values[key] for key in NAMES}, NAMES)
            self.assertEqual({key: values[key] for key in COMMENTS}, COMMENTS)
            self.assertEqual({key: values[key] for key in KEYWORDS}, KEYWORDS)
            self.assertEqual(values["nodisplay"], no_display)
            self.assertEqual(values["exec"], "/opt/mvsignpad/mvsignpadsdk_wssvr")
            self.assertEqual(values["tryexec"], "/opt/mvsignpad/mvsignpadsdk_wssvr")
            self.assertEqual(values["icon"], "mvsignpadsdk_wssvr")
            self.assertEqual(values["terminal"], "false")

    def test_versions_agree(self):
        version = clean_root.output("dpkg-deb", "-f", self.program, "Version").strip()
        self.assertEqual(version, clean_root.output("dpkg-deb", "-f", self.virtual, "Version").strip())
        self.dpkg("--install", self.program)
        changelog = self.at("/usr/share/doc/mvsignpad/changelog.gz")
        self.assertTrue(clean_root.output("zcat", changelog).startswith(f"mvsignpad ({version}) "))
        self.assertIn(version, self.in_root("mvsignctl", "--version").stdout)

    def test_manual_names_every_option(self):
        self.dpkg("--install", self.program)
        manual = clean_root.output("zcat", self.at("/usr/share/man/man1/mvsignctl.1.gz")).replace("\\-", "-")
        options = re.findall(r"--[a-z-]+", self.in_root("mvsignctl", "--help").stdout)
        self.assertGreaterEqual(len(options), 6)
        self.assertEqual([option for option in options if option not in manual], [])

    def test_doctor_says_what_is_missing(self):
        self.dpkg("--install", self.program)
        doctor = self.in_root("mvsignctl", "doctor")
        self.assertEqual(doctor.returncode, 1)
        lines = dict(line.split(": ", 1) for line in doctor.stdout.splitlines())
        self.assertTrue(lines["BAD  program"].startswith("does not run: "), doctor.stdout)
        self.assertEqual(lines["BAD  pad library"],
                         f"{MAKERS_LIBRARY} is not there: copy the library of the pad's maker to it")
        self.assertIn("install", lines["BAD  Chinese font"])
        self.assertEqual(lines["ok   icon"], "/opt/mvsignpad/mvsignpadsdk_wssvr.ico")
        self.assertIn("ok   other copies", lines)
        self.at("/usr/bin/pgrep").rename(self.at("/root/pgrep"))
        self.addCleanup(self.at("/root/pgrep").rename, self.at("/usr/bin/pgrep"))
        self.assertIn("install pgrep", self.in_root("mvsignctl", "doctor").stdout)

    def test_makers_library_is_left_alone(self):
        self.dpkg("--install", self.program, self.virtual)
        self.at(MAKERS_LIBRARY).write_text("the maker's")
        self.dpkg("--install", self.program, self.virtual)
        self.assertEqual(self.at(MAKERS_LIBRARY).read_text(), "the maker's")
        self.dpkg("--purge", "mvsignpad", "mvsignpad-virtual")
        self.assertEqual(self.at(MAKERS_LIBRARY).read_text(), "the maker's")
        shutil.rmtree(self.at("/opt"))

    def test_program_serves_from_where_it_is_installed(self):
        self.dpkg("--install", self.program, self.virtual)
        shutil.copy(self.at(VIRTUAL_PAD), self.at(MAKERS_LIBRARY))
        self.addCleanup(self.at(MAKERS_LIBRARY).unlink)
        settings = self.at("/root/.config/mvsignpadsdk/MVSignPadSDK_WSSvr.conf")
        settings.parent.mkdir(parents=True)
        settings.write_text(SETTINGS)
        environment = dict(ENVIRONMENT, DISPLAY=self.start_desktop())
        messages = self.work / "messages"
        with messages.open("w") as stream:
            program = self.start("chroot", self.root, "/opt/mvsignpad/mvsignpadsdk_wssvr", env=environment,
                                 stdout=stream, stderr=stream)
        wait_for(is_listening)

        self.assertEqual(self.request("InitialDevice", "id=2", "width=800", "height=480"), (0, "1"))
        self.assertEqual(self.request("PadID"), (0, "VP-ALDER-0002"))
        self.assertEqual(self.request("NoSuchCommand")[0], 1)
        # It is pgrep, which the package depends on, that finds the running copy.
        second = self.in_root("/opt/mvsignpad/mvsignpadsdk_wssvr", env=environment)
        self.assertEqual((second.returncode, second.stdout), (1, ""))
        self.assertIsNone(program.poll())
        self.assertEqual(messages.read_text(), "")

    def request(self, *words):
        """The status and the output of the installed client."""
        client = self.in_root("mvsignctl", "--port", str(PORT), *words)
        return client.returncode, client.stdout.strip()

    def start(self, *command, **options):
        process = subprocess.Popen(command, **options)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def start_desktop(self):
        """An X server, outside the root, with a tray on it; the name of its display."""
        reader, writer = os.pipe()
        self.start("Xvfb", "-displayfd", str(writer), "-nolisten", "tcp", pass_fds=[writer], stderr=subprocess.DEVNULL)
        os.close(writer)
        with os.fdopen(reader) as pipe:
            display = ":" + pipe.readline().strip()
        self.start("trayer", "--SetDockType", "false", env=dict(os.environ, DISPLAY=display))
        return display


if __name__ == "__main__":
    BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
    unittest.main(verbosity=2)
