#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Compares docs/service-api.yaml with what the simulator sends and the program asks.

Usage: service_api_test.py PROGRAM [unittest arguments], PROGRAM being the simulator.
"""

import copy
import functools
import os
import re
import subprocess
import sys
import unittest

import jsonschema

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [os.path.join(HERE, "simulator"), os.path.join(HERE, "support")]
from service_api import (API, OPERATIONS, SCHEMAS, described, example_value, reply_schema,
                         request_schema, resolved)
from simulator_process import Simulator
from stand_in_service import REQUESTS

PROGRAM = None

# The scenarios' time passes with the requests: whatever lasts for a second is seen, on every
# computer. After a minute the last certificate has been obtained.
LIFE = ("--speed", "0", "--step", "1", "--delay-ms", "0")
WATCHED_S = 60


def faults(schema, instance):
    """What is wrong with a JSON value, one sentence each."""
    # The components lie beside the schema, so that its references find them.
    whole = {"allOf": [schema], "components": API["components"]}
    validator = jsonschema.Draft202012Validator(whole, format_checker=jsonschema.FormatChecker())
    return ["/".join(str(step) for step in error.absolute_path) + ": " + error.message[:500]
            for error in validator.iter_errors(instance)]


def places(value, path=""):
    """Every place of a document with its value; the elements of an array are its place 0."""
    yield path, value
    inner = value.items() if isinstance(value, dict) else \
        [("0", element) for element in value] if isinstance(value, list) else []
    for name, member in inner:
        yield from places(member, f"{path}.{name}".lstrip("."))


class Document(unittest.TestCase):
    def test_every_schema_is_one(self):
        for name, schema in SCHEMAS.items():
            with self.subTest(name):
                jsonschema.Draft202012Validator.check_schema(schema)

    def test_every_member_has_a_meaning(self):
        for name, schema in SCHEMAS.items():
            for path, member in described(schema).items():
                with self.subTest(schema=name, path=path):
                    is_member = path.rpartition(".")[2] not in ("", "0")
                    self.assertTrue(not is_member or "description" in member or
                                    "properties" in member)

    def test_every_example_is_valid(self):
        examples = [(schema, example, f"{name}: {path}") for name, whole in SCHEMAS.items()
                    for path, schema in described(whole).items()
                    for example in schema.get("examples", [])]
        for key, operation in OPERATIONS.items():
            contents = {status: resolved(reply)["content"]
                        for status, reply in operation["responses"].items()}
            if "requestBody" in operation:
                contents["body"] = operation["requestBody"]["content"]
            for status, content in contents.items():
                media = content["application/json"]
                self.assertTrue(media["examples"], f"{key} {status}")
                examples += [(media["schema"], example_value(example), f"{key} {status} {name}")
                             for name, example in media["examples"].items()]
        self.assertGreater(len(examples), 30)
        for schema, example, where in examples:
            with self.subTest(where):
                self.assertEqual(faults(schema, example), [])

    def test_every_operation_wants_the_three_header_fields(self):
        for key, operation in OPERATIONS.items():
            fields = {resolved(parameter)["name"]: resolved(parameter)["schema"]["const"]
                      for parameter in operation["parameters"]}
            self.assertEqual(fields, {"Host": "tarnwave", "X-Tarnwave": "1",
                                      "Content-Type": "application/json"}, key)

    def test_the_service_of_the_tests_answers_every_request_as_described(self):
        self.assertEqual(OPERATIONS.keys(), REQUESTS.keys(), "tests/support/stand_in_service.py")
        for key, request in REQUESTS.items():
            with self.subTest(key):
                self.assertEqual(faults(reply_schema(key, 200), request.reply), [])


class Replies(unittest.TestCase):
    def exchange(self, simulator, key, body=None, status=200):
        """Makes a request; its body, its reply's status and body must be as they should."""
        if body is not None:
            self.assertEqual(faults(request_schema(key), body), [])
        reply = simulator.request(*key.split(" "), body)
        self.assertEqual(reply.status, status, reply)
        self.assertEqual(faults(reply_schema(key, status), reply.document), [])
        return reply.document

    def test_each_scenario_sends_what_is_described_and_together_they_send_all_of_it(self):
        listed = subprocess.run([PROGRAM, "--list-scenarios"], capture_output=True, text=True,
                                check=True).stdout
        seen = {}

        def watch(key, scenario, status=200):
            with self.subTest(scenario), \
                    Simulator(PROGRAM, "--scenario", scenario, *LIFE) as simulator:
                if scenario == "off-air":  # a relay that has no key
                    settings = simulator.state()["settings"]
                    settings["relay"]["enabled"] = True
                    self.exchange(simulator, "PUT /api/settings", settings)
                for _ in range(WATCHED_S):
                    for path, value in places(self.exchange(simulator, key, status=status)):
                        seen.setdefault((key, path), []).append(value)

        for scenario in re.findall(r"^  (\S+)", listed, re.MULTILINE):
            watch("GET /api/state", scenario, 403 if scenario == "not-owner" else 200)
        watch("GET /api/devices", "first-run")
        for key in "GET /api/state", "GET /api/devices":
            for path, member in described(reply_schema(key, 200)).items():
                self.assertIn((key, path), seen)
                known_values = set(member.get("x-known-values", []))
                if not path.startswith("settings"):
                    self.assertLessEqual(known_values, set(map(str, seen[key, path])), path)
                if path.endswith(".state"):
                    self.assertEqual(known_values, set(seen[key, path]), path)

    def test_each_request_is_answered_as_described(self):
        with Simulator(PROGRAM, "--speed", "0") as simulator:
            document = self.exchange(simulator, "GET /api/state")
            settings = document["settings"]
            settings["network"]["port"] = 8.074E3
            settings["receivers"][0]["lo"] = 6.9e6
            first, second, *_ = document["status"]["listeners"]
            self.exchange(simulator, "PUT /api/settings", settings)
            self.exchange(simulator, "POST /api/ban", {"address": first["address"]})
            self.exchange(simulator, "POST /api/kick", {"number": first["number"]}, 404)
            self.exchange(simulator, "POST /api/kick", {"number": second["number"]})
            self.exchange(simulator, "POST /api/register", {"email": "a@b.example"}, 409)
        with Simulator(PROGRAM, "--scenario", "first-run") as simulator:
            self.exchange(simulator, "POST /api/register", {"email": "a@b.example"})

    def test_the_simulator_knows_every_request_and_its_method(self):
        with Simulator(PROGRAM) as simulator:
            for method, target in map(str.split, OPERATIONS):
                reply = simulator.request("DELETE", target)
                self.assertEqual((reply.status, reply.header.get("allow")), (405, method), target)

    def test_service_and_description_refuse_the_same_settings(self):
        def bend(path, value=None):
            settings = copy.deepcopy(stored)
            *way, name = path
            target = functools.reduce(lambda inner, step: inner[step], way, settings)
            if value is None:
                del target[name]
            else:
                target[name] = value
            return settings

        schema = SCHEMAS["SettingsToSave"]
        with Simulator(PROGRAM, "--speed", "0") as simulator:
            stored = simulator.state()["settings"]
            cases = [(bend(["network", "port"], port), good) for port, good in (
                (1023, False), (1024, True), (65535, True), (65536, False), (8073.5, False),
                ("8073", False))]
            cases += [(bend(["listeners", name], value), good) for name, value, good in (
                ("max", 0, False), ("max", 1, True), ("max", 200, True), ("max", 201, False),
                ("per_address", 0, False), ("per_address", 20, True), ("per_address", 21, False),
                ("session_minutes", -1, False), ("session_minutes", 0, True),
                ("session_minutes", 1440, True), ("session_minutes", 1441, False),
                ("cooldown_minutes", -1, False), ("cooldown_minutes", 1441, False),
                ("idle_minutes", 0, False), ("idle_minutes", 1441, False))]
            cases += [(bend(["content", "modes"], modes), good) for modes, good in (
                ([], True), (["FM"], True), (["fm"], False), (["FM", "FM"], False),
                ("FM", False))]
            cases += [(bend(["access", "banned"], banned), good) for banned, good in (
                ([], True), (["203.0.113.4", "2001:db8::/32"], True), (["hilltop"], False),
                (["203.0.113.0/33"], False), (["::/129"], False), ([4], False))]
            cases += [(bend(["receivers", 0, name], value), good) for name, value, good in (
                ("backend", "", False), ("serial", "", False), ("model", 5, False),
                ("lo", -1, False), ("lo", 7000000.5, False), ("hi", 6000000001, False),
                ("hi", "7", False), ("colour", "blue", False))]
            cases += [(bend(["directory", "url"], url), good) for url, good in (
                ("", True), ("http://a.example/", True), ("a.example", False))]
            cases += [(bend([group, name]), False) for group in stored
                      if isinstance(stored[group], dict) for name in stored[group]
                      if (group, name) not in (("station", "timezone"), ("network", "bind"),
                                               ("listeners", "greeting"))]
            cases += [(bend([name]), False) for name in stored if name != "format"]
            cases += [(bend(["receivers", 0, name]), False) for name in stored["receivers"][0]]
            self.assertGreater(len(cases), 80)
            for number, (settings, good) in enumerate(cases):
                with self.subTest(case=number, settings=settings):
                    self.assertEqual(not faults(schema, settings), good)
                    status = simulator.request("PUT", "/api/settings", settings).status
                    self.assertEqual(status, 200 if good else 422)


if __name__ == "__main__":
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main()
