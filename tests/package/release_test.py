"""Where a package has its version and its day from."""

from __future__ import annotations

import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "packaging/release.py"


class Release(unittest.TestCase):
    """A repository of the case's own, with one commit."""

    def setUp(self) -> None:
        """Makes it."""
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        (self.root / "packaging").mkdir()
        shutil.copy(SCRIPT, self.root / "packaging")
        (self.root / "CMakeLists.txt").write_text("# the version\nproject(Fernwick VERSION 4.5.6 LANGUAGES CXX)\n")
        self.changelog("## [4.5.6] - unreleased")
        self.git("init", "--quiet")
        self.git("commit", "--quiet", "--allow-empty", "--message", "first", "--date", "@86400 +0000")

    def changelog(self, *headings: str) -> None:
        """Writes a changelog with these headings."""
        (self.root / "CHANGELOG.md").write_text("\n".join(["# Changelog", *headings, ""]))

    def git(self, *words: str) -> None:
        """Runs git in the repository, as nobody in particular."""
        who = {f"GIT_{role}_{what}": "nobody@localhost" for role in ("AUTHOR", "COMMITTER") for what in ("NAME", "EMAIL")}
        subprocess.run(["git", *words], cwd=self.root, check=True,
                       env=os.environ | who | {"GIT_COMMITTER_DATE": "@1700000000 +0900"})

    def says(self, **environment: str) -> str:
        """What the script prints, or its complaint."""
        clean = {name: value for name, value in os.environ.items() if name != "SOURCE_DATE_EPOCH"}
        done = subprocess.run([self.root / "packaging/release.py"], env=clean | {"TZ": "Asia/Tokyo"} | environment,
                              capture_output=True, text=True)
        return (done.stdout if done.returncode == 0 else done.stderr).strip()

    def test_unreleased_is_the_day_of_the_last_commit(self) -> None:
        self.assertEqual(self.says(), "4.5.6 1700000000 2023-11-14")

    def test_dated_heading_is_that_day(self) -> None:
        self.changelog("## [5.0.0] - 2031-01-01", "## [4.5.6] - 2024-02-29", "## [4.5.5] - 2024-01-01")
        self.assertEqual(self.says(), "4.5.6 1709164800 2024-02-29")

    def test_heading_of_another_version_does_not_count(self) -> None:
        self.changelog("## [4.5.60] - 2031-01-01", "## [4x5.6] - 2031-01-01", "## [4.5.6] - 2031-1-1")
        self.assertEqual(self.says(), "4.5.6 1700000000 2023-11-14")

    def test_environment_wins(self) -> None:
        self.changelog("## [4.5.6] - 2024-02-29")
        self.assertEqual(self.says(SOURCE_DATE_EPOCH="1"), "4.5.6 1 1970-01-01")

    def test_no_version_is_an_error(self) -> None:
        (self.root / "CMakeLists.txt").write_text("project(Fernwick)\n")
        self.assertEqual(self.says(), "CMakeLists.txt has no version in project()")

    def test_no_repository_and_no_date_is_an_error(self) -> None:
        shutil.rmtree(self.root / ".git")
        self.assertIn("CalledProcessError", self.says(GIT_CEILING_DIRECTORIES=str(self.root.parent)))


if __name__ == "__main__":
    unittest.main(verbosity=2)
