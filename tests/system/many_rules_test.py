"""The window of proxies and rules with ten thousand rules in it."""

from __future__ import annotations

import time

from harness import main, own_network, stored, wait_until
from lab.screen import Widget, act, controls
from rules_case import WINDOW, RulesTest


class ManyRules(RulesTest):
    """Ten thousand rules."""

    COUNT = 10_000
    PAUSE = 1.5  # seconds, the ways through accessibility included

    def timed(self, what: str, begun: float) -> None:
        """Holds the time since `begun` against the bound."""
        took = time.monotonic() - begun
        self.assertLess(took, self.PAUSE, f"{what} took {took:.2f} s")

    def test_window_opens_and_searches(self) -> None:
        rules = [stored.rule(f"Rule {number}", "Block", targetHosts=[f"host{number}.example"])
                 for number in range(self.COUNT)]
        app = self.begin(**{stored.RULES: rules})
        button = app.find(WINDOW, "push button")
        begun = time.monotonic()
        act(button)
        window = self.keyboard.window(WINDOW)
        self.timed("opening", begun)
        self._reach_tabs("Proxies")
        begun = time.monotonic()
        self.keyboard.press("Right")
        rows = self._shows(window, self.COUNT)
        self.timed("turning to the rules", begun)
        search = next(node for node in controls(window) if node.get_name() == "Search rules...")
        for text, found in (("host999", 11), ("Rule 1", 1111), ("", self.COUNT)):
            begun = time.monotonic()
            self.assertTrue(search.get_editable_text_iface().set_text_contents(text))
            wait_until(lambda found=found: rows.get_child_count() == found, f"{text!r} finds {found}")
            self.timed(f"the search for {text!r}", begun)
        self.assertIn(f"{self.COUNT}/{self.COUNT} active", [node.get_name() for node in controls(window)])

    def _shows(self, window: Widget, count: int) -> Widget:
        """Waits for the list of the rules with so many rows."""
        def look() -> list[Widget]:
            return [node for node in controls(window) if node.get_role_name() == "list" and node.get_name() == "Rules"
                    and node.get_child_count() == count]
        return wait_until(look, f"the list has {count} rows")[0]


if __name__ == "__main__":
    own_network()
    main()
