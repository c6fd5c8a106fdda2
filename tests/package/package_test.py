"""What script/package made: the folder in the archive, the .deb, and that packing twice gives the same bytes.

FERNWICK_PACKAGES names the folder where the two lie.
"""

from __future__ import annotations

import hashlib
import os
import plistlib
import re
import stat
import struct
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
import zipfile
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parents[2]
PACKAGES = Path(os.environ["FERNWICK_PACKAGES"])
APP = "Fernwick.app"
OPT = Path("opt/fernwick")
IDENTITY = "com.fernwick.Fernwick"
BINARIES = {"Fernwick": 0o755, "libfernwick_http.so": 0o644, "libfernwick_keyring.so": 0o644}
SIZES = (16, 22, 24, 32, 48, 64, 128, 256, 512)


def run(*command: str | Path, **options: object) -> str:
    """What a command prints; it must succeed."""
    return str(subprocess.run(command, check=True, capture_output=True, text=True, timeout=300, **options).stdout)


def only(pattern: str) -> Path:
    """The one file of that name among the packages."""
    found = list(PACKAGES.glob(pattern))
    assert len(found) == 1, f"{pattern}: {found}"
    return found[0]


def files_below(folder: Path) -> list[str]:
    """The paths of all files below a folder, relative to it."""
    return sorted(path.relative_to(folder).as_posix() for path in folder.rglob("*") if not path.is_dir())


class PackageTest(unittest.TestCase):
    """Both packages, unpacked once."""

    @classmethod
    def setUpClass(cls) -> None:
        """Unpacks the archive with the program that an update uses, and the .deb."""
        folder = tempfile.TemporaryDirectory(prefix="fernwick packages ")  # the blank is deliberate
        cls.addClassCleanup(folder.cleanup)
        cls.zip, cls.deb = only("Fernwick-*.zip"), only("fernwick_*.deb")
        cls.unpacked, cls.root = Path(folder.name) / "zip", Path(folder.name) / "deb"
        cls.unpacked.mkdir()
        run("bsdtar", "-xf", cls.zip, "-C", cls.unpacked)
        run("dpkg-deb", "--raw-extract", cls.deb, cls.root)
        cls.app = cls.unpacked / APP
        # There may be newer commits than the packages: they know themselves when they were released.
        cls.made = os.environ | {"SOURCE_DATE_EPOCH": f"{cls.root.joinpath(OPT).stat().st_mtime:.0f}"}
        cls.version, _, cls.day = run("packaging/release.py", cwd=REPOSITORY, env=cls.made).split()


class Folder(PackageTest):
    """The application folder as the archive has it."""

    def test_stands_alone_at_the_top(self) -> None:
        with zipfile.ZipFile(self.zip) as archive:
            entries = archive.infolist()
        names = [entry.filename for entry in entries]
        self.assertEqual({name.split("/")[0] for name in names}, {APP})
        self.assertEqual(names, sorted(names))
        self.assertEqual(len({entry.date_time for entry in entries}), 1)
        self.assertTrue(all(not entry.extra for entry in entries))

    def test_holds_the_program_and_its_parts(self) -> None:
        for name, mode in BINARIES.items():
            self.assertEqual(stat.S_IMODE((self.app / name).stat().st_mode), mode, name)
        share = {f"share/{name}" for name in (
            f"applications/{IDENTITY}.desktop", f"metainfo/{IDENTITY}.metainfo.xml", "man/man1/fernwick.1",
            "doc/LICENSE", "doc/CHANGELOG.md", f"icons/hicolor/scalable/apps/{IDENTITY}.svg",
            *(f"icons/hicolor/{size}x{size}/apps/{IDENTITY}.png" for size in SIZES))}
        self.assertEqual(set(files_below(self.app)), {*BINARIES, "Info.plist", *share})

    def test_binaries_tell_nothing_of_where_they_were_made(self) -> None:
        for name in BINARIES:
            content = (self.app / name).read_bytes()
            for place in (REPOSITORY, PACKAGES.resolve(), Path.home()):
                self.assertFalse(f"{place}/".encode() in content, f"{name} knows {place}")
            sections = run("readelf", "--wide", "--sections", self.app / name)
            self.assertNotRegex(sections, r"\.(debug_|symtab|comment\.path)", name)
            dynamic = run("readelf", "--wide", "--dynamic", self.app / name)
            self.assertNotRegex(dynamic, "RPATH|RUNPATH", name)
            self.assertRegex(dynamic, r"FLAGS_1.*NOW", name)

    def test_libraries_are_found_from_any_folder(self) -> None:
        for name in BINARIES:
            self.assertNotIn("not found", run("ldd", self.app / name))

    def test_icons_have_the_sizes_of_their_folders(self) -> None:
        for size in SIZES:
            icon = (self.app / f"share/icons/hicolor/{size}x{size}/apps/{IDENTITY}.png").read_bytes()
            self.assertEqual(icon[:8], b"\x89PNG\r\n\x1a\n")
            self.assertEqual(struct.unpack(">II", icon[16:24]), (size, size))
            self.assertGreater(len(icon), 300)  # something is drawn

    def test_version_and_day_are_the_same_everywhere(self) -> None:
        self.assertEqual(self.zip.name, f"Fernwick-{self.version}-linux-{os.uname().machine}.zip")
        information = plistlib.loads((self.app / "Info.plist").read_bytes())
        self.assertEqual(information["CFBundleShortVersionString"], self.version)
        metainfo = ElementTree.parse(self.app / f"share/metainfo/{IDENTITY}.metainfo.xml").getroot()
        release = metainfo.find("releases/release")
        assert release is not None
        self.assertEqual((release.get("version"), release.get("date")), (self.version, self.day))
        self.assertIn(f'"{self.day}" "Fernwick {self.version}"', (self.app / "share/man/man1/fernwick.1").read_text())
        self.assertIn(f"## [{self.version}]", (self.app / "share/doc/CHANGELOG.md").read_text())
        program = (self.app / "Fernwick").read_bytes()
        self.assertTrue(self.version.encode("utf-16-le") in program, "the program knows its version")


class Moved(PackageTest):
    """The folder in a place that it was not made for."""

    def test_application_does_its_work(self) -> None:
        picture = self.unpacked / "demo.png"
        said = run("/usr/bin/python3", "-B", "script/demo/demo.py", "--once", "--picture", picture, cwd=REPOSITORY,
                   env=os.environ | {"FERNWICK_PROGRAM": str(self.app / "Fernwick")})
        self.assertIn("no ssh child is left", said)
        self.assertTrue(picture.exists())


class Deb(PackageTest):
    """The package for Debian."""

    def field(self, name: str) -> str:
        """A field of its control file."""
        return run("dpkg-deb", "--field", self.deb, name).strip()

    def test_holds_the_same_folder(self) -> None:
        installed = self.root / OPT / APP
        self.assertEqual(files_below(installed), files_below(self.app))
        for name in files_below(self.app):
            self.assertEqual((installed / name).read_bytes(), (self.app / name).read_bytes(), name)

    def test_link_leads_to_the_program(self) -> None:
        link = self.root / "usr/bin/fernwick"
        self.assertTrue(link.is_symlink())
        self.assertEqual(os.readlink(link), f"/{OPT}/{APP}/Fernwick")
        self.assertTrue((self.root / OPT / APP / "Fernwick").is_file())

    def test_everything_belongs_to_root_and_nobody_else_writes(self) -> None:
        for line in run("dpkg-deb", "--contents", self.deb).splitlines():
            kind, owner = line.split()[:2]
            self.assertEqual(owner, "root/root", line)
            self.assertRegex(kind, r"^(l.*|.rw[x-]r-[x-]r-[x-])$", line)
            self.assertNotRegex(kind, "[sStT]", line)

    def test_declares_what_it_needs(self) -> None:
        self.assertEqual(self.field("Version"), self.version)
        depends = {each.strip().split()[0] for each in self.field("Depends").split(",")}
        self.assertLessEqual({"openssh-client", "lsof", "procps", "libarchive-tools", "qt6-qpa-plugins", "libqt6svg6",
                              "libqt6widgets6", "libqt6network6", "libsecret-1-0", "libc6"}, depends)
        self.assertFalse([name for name in depends if name.endswith("-dev")])

    def test_sums_are_those_of_its_files(self) -> None:
        sums = (self.root / "DEBIAN/md5sums").read_text().splitlines()
        summed = {line[34:]: line[:32] for line in sums}
        files = [name for name in files_below(self.root) if not name.startswith("DEBIAN/") and not
                 (self.root / name).is_symlink()]
        self.assertEqual(sorted(summed), files)
        for name, value in summed.items():
            self.assertEqual(hashlib.md5((self.root / name).read_bytes()).hexdigest(), value, name)

    def test_administrator_is_asked_each_time(self) -> None:
        policy = ElementTree.parse(self.root / f"usr/share/polkit-1/actions/{IDENTITY}.policy").getroot()
        answers = {each.text for defaults in policy.iter("defaults") for each in defaults}
        self.assertEqual(answers, {"auth_admin"})
        program = policy.findtext("action/annotate")
        assert program is not None
        self.assertTrue(os.access(self.root / program.lstrip("/"), os.X_OK))
        self.assertIn(f'"{program}"', (REPOSITORY / "src/platform/linux/PkexecShell.h").read_text())

    def test_copyright_holds_the_whole_licence(self) -> None:
        words = re.sub(r"^ \.?", "", (self.root / "usr/share/doc/fernwick/copyright").read_text(), flags=re.MULTILINE)
        licence = (REPOSITORY / "LICENSE").read_text().partition("\n\nPermission")[2]
        self.assertEqual(words.split()[-len(licence.split()):], licence.split())


class Packing(PackageTest):
    """Packing itself."""

    def test_again_on_another_day_gives_the_same_bytes(self) -> None:
        before = [hashlib.sha256(path.read_bytes()).hexdigest() for path in (self.zip, self.deb)]
        environment = self.made | {"TZ": "Asia/Tokyo", "LC_ALL": "C.UTF-8"}
        made = run("sh", "-c", "umask 077 && script/package --archives", cwd=REPOSITORY, env=environment)
        self.assertEqual([line.split()[0] for line in made.splitlines()[-2:]], before)

    def test_unknown_argument_is_refused(self) -> None:
        done = subprocess.run(["script/package", "--archive"], cwd=REPOSITORY, capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stderr), (1, "error: unknown argument --archive\n"))
        self.assertTrue(self.zip.exists() and self.deb.exists())


if __name__ == "__main__":
    unittest.main(verbosity=2)
