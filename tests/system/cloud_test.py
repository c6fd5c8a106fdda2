"""Two computers and the cloud folder between them: after each step both preference files hold what they should."""

from __future__ import annotations

import contextlib
import os
import shutil
from pathlib import Path

from harness import main, stored, wait_until
from lab.app import App
from lab.screen import act, checked
from travel_case import SAMPLE, Blobs, Computer, TravelTest, catalogue

ENTRIES = {"fernWick_tunnels_v2": stored.TUNNELS, "fernWick_tags_v1": stored.TAGS, "fernWick_keys_v1": stored.KEYS,
           "fernWick_proxies_v1": stored.PROXIES, "fernWick_rules_v1": stored.RULES}
PUSHED = ("Pushed to iCloud", "Data sent to iCloud successfully.")
NOT_PUSHED = ("Push failed", "Check iCloud availability.")
PULLED = ("Pulled from iCloud", "Local data updated from iCloud.")
NOTHING_PULLED = ("Nothing to pull", "No data found in iCloud yet.")
SYNC, ROUTING = "syncWithiCloud", "Proxies & Rules"


class Cloud(TravelTest):
    """An office and a house, with catalogues of their own and one folder that both see as their cloud."""

    def setUp(self) -> None:
        """Two homes; nobody has started anything."""
        super().setUp()
        self.folder = self.place / "cloud"
        self.folder.mkdir()
        self.office, self.house = Computer(self, "office"), Computer(self, "house")
        for computer in (self.office, self.house):
            computer.cloud.symlink_to(self.folder)

    def begin(self, office: bool | None = None, house: bool | None = None) -> tuple[App, App]:
        """Starts both, with the page open; the arguments say whether sync was on. Notes what they hold then."""
        self.office.seed(catalogue("Office"), **({} if office is None else {SYNC: office}))
        self.house.seed(catalogue("House", "Garden"), **({} if house is None else {SYNC: house}))
        apps = self.office.start_at_sync(), self.house.start_at_sync()
        self.of_office, self.of_house = self.office.blobs(), self.house.blobs()
        for blobs in (self.of_office, self.of_house):
            self.assertEqual(len(blobs), len(ENTRIES))
        return apps

    def entries(self) -> Blobs:
        """What lies in the cloud, by the keys of the preference file; other files by their names."""
        found = {}
        for file in self.folder.iterdir():
            with contextlib.suppress(FileNotFoundError):  # what is being written is renamed when it is through
                found[ENTRIES.get(file.name, file.name)] = file.read_bytes()
        return found

    def in_cloud(self, wanted: Blobs) -> None:
        """Waits until exactly that lies in the cloud."""
        wait_until(lambda: self.entries() == wanted, f"the cloud holds {list(wanted)}, not {list(self.entries())}")

    def both_hold(self, office: Blobs, house: Blobs) -> None:
        """Both preference files hold these lists and keep them."""
        self.office.keeps(office, "what the office has")
        self.house.keeps(house, "what the house has")

    def put(self, name: str, content: bytes) -> None:
        """Puts a file into the cloud as a sync program does: written aside, then renamed into its place."""
        aside = self.place / "on-its-way"
        aside.write_bytes(content)
        aside.rename(self.folder / name)

    def push(self, app: App, answer: tuple[str, str] = PUSHED) -> None:
        """Pushes and reads the alert."""
        self.press(app, "Push Now")
        self.told(app, *answer)

    def pull(self, app: App, answer: tuple[str, str] = PULLED) -> None:
        """Pulls and reads the alert."""
        self.press(app, "Pull Now")
        self.told(app, *answer)


class BetweenComputers(Cloud):
    """What goes from one to the other, and when."""

    def test_nothing_travels_while_sync_is_off(self) -> None:
        office, house = self.begin()
        self.shows(office, "Available")
        self.push(office, NOT_PUSHED)
        self.pull(house, NOTHING_PULLED)
        self.assertEqual(self.entries(), {})
        self.both_hold(self.of_office, self.of_house)
        self.assertNotIn("lastSyncTS", self.office.preferences.read())

    def test_push_in_one_and_pull_in_the_other(self) -> None:
        self.office.seed(catalogue("Office"), **{SYNC: True})
        office = self.office.start_at_sync()
        self.pull(office, NOTHING_PULLED)
        self.of_office = self.office.blobs()
        self.push(office)
        self.shows(office, "Synced")
        self.in_cloud(self.of_office)
        self.house.seed(catalogue("House", "Garden"), **{SYNC: True})
        house = self.house.start_at_sync()
        self.of_house = self.house.blobs()
        self.both_hold(self.of_office, self.of_house)  # a start pulls nothing
        self.pull(house)
        self.both_hold(self.of_office, self.of_office)
        self.in_cloud(self.of_office)
        self.assertEqual(house.rows(), ["House", "Garden"])  # as loaded when it started
        house.quit()
        again = self.house.start()
        wait_until(lambda: again.rows() == ["Office"], "the next start shows what was pulled")
        self.house.holds(self.of_office)

    def test_change_comes_in_while_the_other_runs(self) -> None:
        office, house = self.begin(office=True, house=True)
        self.push(office)
        self.in_cloud(self.of_office)
        self.house.holds(self.of_office)
        self.shows(house, "Synced")
        wait_until(lambda: self.house.preferences.read().get("lastSyncTS", 0) > 0, "the time of the sync is kept")
        act(house.find(ROUTING, "push button"))
        routing = self.window(house, ROUTING)
        wait_until(lambda: any("Proxy of Office" in text for text in house.texts(routing)), "the proxies follow")
        self.push(house)
        self.both_hold(self.of_office, self.of_office)
        self.assertEqual(house.rows(), ["House", "Garden"])

    def test_file_that_arrives_in_pieces_is_taken_whole(self) -> None:
        _, house = self.begin(house=True)
        self.house.keeps(self.of_house, "what the house has")
        whole = self.of_office[stored.TUNNELS]
        with open(self.folder / "fernWick_tunnels_v2", "wb", buffering=0) as copied:
            copied.write(whole[:len(whole) // 2])
            os.fsync(copied.fileno())
            self.both_hold(self.of_office, self.of_house)
            copied.write(whole[len(whole) // 2:])
        self.house.holds(self.of_house | {stored.TUNNELS: whole})
        self.assertTrue(house.running())

    def test_turning_sync_on_puts_the_own_lists_over_those_of_the_cloud(self) -> None:
        office, house = self.begin()
        self.turn(office, "Sync with iCloud")
        self.in_cloud(self.of_office)
        self.both_hold(self.of_office, self.of_house)
        self.turn(house, "Sync with iCloud")
        self.in_cloud(self.of_house)
        self.both_hold(self.of_house, self.of_house)
        wait_until(lambda: all(computer.preferences.read().get(SYNC) is True for computer in (self.office, self.house)),
                   "both switches are kept")

    def test_turning_sync_off_and_on_again(self) -> None:
        office, house = self.begin(office=True, house=True)
        self.turn(house, "Sync with iCloud", on=False)
        self.shows(house, "Available")
        self.push(office)
        self.both_hold(self.of_office, self.of_house)
        self.turn(house, "Sync with iCloud")
        self.in_cloud(self.of_house)
        self.both_hold(self.of_house, self.of_house)
        self.put("fernWick_tags_v1", self.of_office[stored.TAGS])
        mixed = self.of_house | {stored.TAGS: self.of_office[stored.TAGS]}
        self.both_hold(mixed, mixed)

    def test_list_that_is_missing_here_stays_in_the_cloud(self) -> None:
        lists = catalogue("Office")
        self.put("fernWick_rules_v1", lists.pop(stored.RULES))
        rules = self.entries()
        self.office.seed(lists, **{SYNC: True})
        office = self.office.start_at_sync()
        self.push(office)
        self.in_cloud(self.office.blobs() | rules)
        self.assertNotIn(stored.RULES, self.office.blobs())


class Trouble(Cloud):
    """A cloud that is not there, and files in it that should not be."""

    def test_signed_out_and_in_again(self) -> None:
        office, house = self.begin(office=True, house=True)
        for computer in (self.office, self.house):
            computer.cloud.unlink()
        self.press(office, "Check iCloud status")
        self.shows(office, "Not signed in to iCloud")
        self.push(office, NOT_PUSHED)
        self.shows(office, "Not signed in to iCloud")
        self.pull(house, NOTHING_PULLED)
        self.both_hold(self.of_office, self.of_house)
        self.assertEqual((self.entries(), self.office.cloud.exists()), ({}, False))
        self.assertTrue(checked(self.shows(office, "Sync with iCloud", "check box")))
        for computer in (self.office, self.house):
            computer.cloud.symlink_to(self.folder)
        self.press(office, "Check iCloud status")
        self.shows(office, "Available")
        self.push(office)
        self.in_cloud(self.of_office)
        self.both_hold(self.of_office, self.of_office)

    def test_disk_of_the_cloud_that_comes_back_is_pulled_from(self) -> None:
        office, house = self.begin(office=True, house=True)
        away = self.place / "away"
        self.folder.rename(away)
        self.push(office, NOT_PUSHED)
        away.rename(self.folder)
        self.push(office)
        self.pull(house)
        self.both_hold(self.of_office, self.of_office)

    def test_cloud_that_cannot_be_written_is_told(self) -> None:
        office, _ = self.begin(office=True)
        self.folder.chmod(0o555)
        self.addCleanup(self.folder.chmod, 0o755)
        self.push(office, NOT_PUSHED)
        self.shows(office, "Error: Sync failed")
        self.assertEqual(self.entries(), {})
        self.both_hold(self.of_office, self.of_house)
        self.folder.chmod(0o755)
        self.push(office)
        self.shows(office, "Synced")
        self.in_cloud(self.of_office)

    def test_corrupt_file_is_taken_as_it_is_and_the_next_start_survives_it(self) -> None:
        _, house = self.begin(house=True)
        garbage = b"\0\xff not a list" * 1000
        for name in ("fernWick_tunnels_v2", "fernWick_rules_v1"):
            self.put(name, garbage)
        corrupt = self.of_house | {stored.TUNNELS: garbage, stored.RULES: garbage}
        self.both_hold(self.of_office, corrupt)
        self.assertEqual(house.rows(), ["House", "Garden"])
        self.assertEqual(house.quit(), 0)
        self.house.holds(corrupt)
        again = self.house.start()
        wait_until(lambda: again.rows() == [SAMPLE], "the next start shows the sample")
        self.assertEqual(self.entries(), {stored.TUNNELS: garbage, stored.RULES: garbage})

    def test_conflict_copies_and_strangers_are_ignored(self) -> None:
        office, house = self.begin(office=True, house=True)
        strangers = ("fernWick_tunnels_v2.sync-conflict-20261115-204115-ABCDEFG", "fernWick_tags_v1 (conflicted copy)",
                     ".fernWick_keys_v1", "fernWick_proxies_v1.part", "fernWick_tunnels_v2~")
        for name in strangers:
            self.put(name, b"[]")
        self.put("fernWick_rules_v1", b"")  # the place of one that is elsewhere
        (self.folder / "fernWick_keys_v1").mkdir()
        self.both_hold(self.of_office, self.of_house)
        (self.folder / "fernWick_keys_v1").rmdir()
        self.push(office)
        self.both_hold(self.of_office, self.of_office)
        self.pull(house)
        self.both_hold(self.of_office, self.of_office)
        self.assertEqual({name: self.entries()[name] for name in strangers}, dict.fromkeys(strangers, b"[]"))

    def test_unknown_key_changes_no_list(self) -> None:
        _, house = self.begin(house=True)
        self.shows(house, "Available")
        self.put("somebodyElses", b"[]")
        self.shows(house, "Synced")
        self.both_hold(self.of_office, self.of_house)

    def test_removed_files_take_nothing_away(self) -> None:
        office, _ = self.begin(office=True, house=True)
        self.push(office)
        self.house.holds(self.of_office)
        for file in Path(self.folder).iterdir():
            file.unlink()
        self.both_hold(self.of_office, self.of_office)
        shutil.rmtree(self.folder)
        self.both_hold(self.of_office, self.of_office)


if __name__ == "__main__":
    main()
