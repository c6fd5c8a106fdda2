#!/usr/bin/env python3
"""Reads every golden configuration as the engine does: as YAML, with all names that it refers to in place."""

import pathlib
import unittest

import yaml

GOLDEN = pathlib.Path(__file__).resolve().parent / "golden"
BUILT_IN = {"DIRECT", "REJECT"}
SECTIONS = ["mixed-port", "socks-port", "allow-lan", "mode", "log-level", "ipv6", "find-process-mode", "sniffer",
            "external-controller", "secret", "dns", "tun", "proxies", "proxy-groups", "rules"]


class StrictLoader(yaml.SafeLoader):
    """Refuses a key that stands twice in a mapping, as the engine's parser does."""

    def construct_mapping(self, node, deep=False):
        keys = [self.construct_object(key, deep=True) for key, _ in node.value]
        if len(keys) != len(set(keys)):
            raise yaml.YAMLError(f"a key stands twice: {keys}")
        return super().construct_mapping(node, deep)


def target_of(rule: str) -> str:
    """Where a rule sends its traffic: its last field, options aside."""
    return rule.removesuffix(",no-resolve").rsplit(",", 1)[1]


class GoldenYaml(unittest.TestCase):
    """One case for each thing that makes the engine refuse a configuration."""

    def setUp(self):
        self.texts = {path.name: path.read_text(encoding="utf-8") for path in sorted(GOLDEN.glob("*.yaml"))}
        self.assertGreaterEqual(len(self.texts), 3)
        self.configs = {name: yaml.load(text, StrictLoader) for name, text in self.texts.items()}

    def test_sections_stand_in_their_order(self):
        for name, config in self.configs.items():
            self.assertEqual(list(config), SECTIONS, name)

    def test_no_line_has_trailing_blanks_or_tabs(self):
        for name, text in self.texts.items():
            self.assertTrue(text.endswith("\n"), name)
            for line in text.splitlines():
                self.assertEqual(line, line.rstrip(), name)
                self.assertNotIn("\t", line, name)

    def test_groups_have_members_that_are_there(self):
        for name, config in self.configs.items():
            proxies = [proxy["name"] for proxy in config["proxies"]]
            self.assertEqual(len(proxies), len(set(proxies)), name)
            for group in config["proxy-groups"]:
                self.assertEqual(group["type"], "select", name)
                for member in group["proxies"]:
                    self.assertIn(member, BUILT_IN | set(proxies), name)

    def test_rules_have_targets_that_are_there(self):
        for name, config in self.configs.items():
            groups = {group["name"] for group in config["proxy-groups"]}
            for rule in config["rules"]:
                self.assertIn(target_of(rule), BUILT_IN | groups, name)
            self.assertEqual(config["rules"][-1], "MATCH,DIRECT", name)

    def test_types_are_what_the_engine_expects(self):
        for name, config in self.configs.items():
            self.assertIs(config["ipv6"], False, name)
            self.assertEqual(config["sniffer"]["sniff"]["HTTP"]["ports"], [80, "8080-8880"], name)
            self.assertIsInstance(config["tun"]["enable"], bool, name)
            for proxy in config["proxies"]:
                self.assertIn(proxy["type"], ("socks5", "http"), name)
                self.assertIsInstance(proxy["port"], int, name)
                self.assertIsInstance(proxy["udp"], bool, name)


if __name__ == "__main__":
    unittest.main()
