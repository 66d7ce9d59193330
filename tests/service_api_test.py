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

# Settings with values that can be saved and values that cannot.
SETTINGS = {
    "network.port": ([1024, 65535], [1023, 65536, 8073.5, "8073"]),
    "listeners.max": ([1, 200], [0, 201]),
    "listeners.per_address": ([20], [0, 21]),
    "listeners.session_minutes": ([0, 1440], [-1, 1441]),
    "listeners.cooldown_minutes": ([], [-1, 1441]),
    "listeners.idle_minutes": ([], [0, 1441]),
    "content.modes": ([[], ["FM"]], [["fm"], ["FM", "FM"], "FM"]),
    "access.banned": ([[], ["203.0.113.4", "2001:db8::/32"]],
                      [["hilltop"], ["203.0.113.0/33"], ["::/129"], [4]]),
    "receivers.0.backend": ([], [""]),
    "receivers.0.serial": ([], [""]),
    "receivers.0.model": ([], [5]),
    "receivers.0.lo": ([], [-1, 7000000.5]),
    "receivers.0.hi": ([], [6000000001, "7"]),
    "receivers.0.colour": ([], ["blue"]),
    "directory.url": (["", "http://a.example/"], ["a.example"]),
}
MISSING = object()
MAY_BE_MISSING = ("format", "station.timezone", "network.bind", "listeners.greeting")


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
        with Simulator(PROGRAM, "--speed", "0") as simulator:
            stored = simulator.state()["settings"]
            cases = [(path, value, good) for path, (accepted, refused) in SETTINGS.items()
                     for values, good in ((accepted, True), (refused, False)) for value in values]
            cases += [(path, MISSING, False) for path in dict(places(stored))
                      if path.rpartition(".")[2] not in ("", "0") and path not in MAY_BE_MISSING]
            self.assertGreater(len(cases), 80)
            for path, value, good in cases:
                with self.subTest(path, value=value):
                    settings = copy.deepcopy(stored)
                    *way, name = (int(step) if step == "0" else step for step in path.split("."))
                    group = functools.reduce(lambda inner, step: inner[step], way, settings)
                    if value is MISSING:
                        del group[name]
                    else:
                        group[name] = value
                    self.assertEqual(not faults(SCHEMAS["SettingsToSave"], settings), good)
                    status = simulator.request("PUT", "/api/settings", settings).status
                    self.assertEqual(status, 200 if good else 422)


if __name__ == "__main__":
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main()
