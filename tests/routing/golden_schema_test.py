#!/usr/bin/env python3
"""Checks every golden configuration against the schema that the engine's community publishes (meta-json-schema)."""

import copy
import json
import os
import pathlib
import unittest

import jsonschema
import yaml

GOLDEN = pathlib.Path(__file__).resolve().parent / "golden"


class GoldenSchema(unittest.TestCase):
    """The schema accepts what is generated, and would not accept anything."""

    def setUp(self):
        path = pathlib.Path(os.environ["FERNWICK_ENGINE_SCHEMA"])
        self.assertTrue(path.exists(), f"no schema at {path}: run script/fetch_schema")
        schema = json.loads(path.read_text(encoding="utf-8"))
        self.validator = jsonschema.validators.validator_for(schema)(schema)
        texts = {file.name: file.read_text(encoding="utf-8") for file in sorted(GOLDEN.glob("*.yaml"))}
        self.configs = {name: yaml.safe_load(text) for name, text in texts.items()}
        self.assertGreaterEqual(len(self.configs), 3)

    def errors(self, config) -> list[str]:
        """What the schema has against a configuration: where, and why."""
        return [f"{error.json_path}: {error.message[:300]}" for error in self.validator.iter_errors(config)]

    def test_every_configuration_is_valid(self):
        for name, config in self.configs.items():
            self.assertEqual(self.errors(config), [], name)

    def test_a_mistake_in_any_section_would_be_seen(self):
        mistakes = {
            "mode": lambda config: config.update(mode="sometimes"),
            "mixed-port": lambda config: config.update({"mixed-port": "many"}),
            "ipv6": lambda config: config.update(ipv6="maybe"),
            "dns": lambda config: config["dns"].update({"enhanced-mode": "wrong"}),
            "tun": lambda config: config["tun"].update(stack="wrong"),
            "sniffer": lambda config: config["sniffer"].update(enable="wrong"),
            "proxy type": lambda config: config["proxies"][0].update(type="wrong"),
            "proxy port": lambda config: config["proxies"][0].update(port="wrong"),
            "group type": lambda config: config["proxy-groups"][0].update(type="wrong"),
            "rules": lambda config: config["rules"].append(7),
        }
        for name, mistake in mistakes.items():
            with self.subTest(name):
                config = copy.deepcopy(self.configs["office.yaml"])
                mistake(config)
                self.assertNotEqual(self.errors(config), [])


if __name__ == "__main__":
    unittest.main()
