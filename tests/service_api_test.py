#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Compares docs/service-api.yaml with what the simulator sends, and bodies with it.

Usage: service_api_test.py PROGRAM [unittest arguments], PROGRAM being the simulator.
"""

import copy
import functools
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest

import jsonschema
import yaml

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [os.path.join(HERE, "simulator"), os.path.join(HERE, "support")]
from simulator_process import Simulator
from stand_in_service import REQUESTS

PROGRAM = None
API_FILE = os.path.join(HERE, "..", "docs", "service-api.yaml")

with open(API_FILE, encoding="utf-8") as api_file:
    API = yaml.safe_load(api_file)


def schema_named(name):
    return {"$ref": "#/components/schemas/" + name}


def faults(schema, instance):
    """What is wrong with a JSON value, one sentence each."""
    # The components lie beside the schema, so that its references find them.
    whole = {"allOf": [schema], "components": API["components"]}
    validator = jsonschema.Draft202012Validator(whole, format_checker=jsonschema.FormatChecker())
    return ["/".join(str(step) for step in error.absolute_path) + ": " + error.message[:500]
            for error in validator.iter_errors(instance)]


def resolved(node):
    """The thing itself in the place of a reference to it; its siblings stay."""
    if not (isinstance(node, dict) and "$ref" in node):
        return node
    target = API
    for step in node["$ref"].removeprefix("#/").split("/"):
        target = target[step]
    return {**resolved(target), **{key: value for key, value in node.items() if key != "$ref"}}


def example_value(example):
    """An example as it stands, or the part of a file beside the page that it names."""
    if "value" in example:
        return example["value"]
    name, _, pointer = example["externalValue"].partition("#/")
    with open(os.path.join(os.path.dirname(API_FILE), name), encoding="utf-8") as file:
        value = json.load(file)
    for step in filter(None, pointer.split("/")):
        value = value[step]
    return value


def operations():
    for target, methods in API["paths"].items():
        for method, operation in methods.items():
            yield target, method.upper(), operation


def request_schema(method, name):
    """The schema of the body of a request such as PUT to /api/settings; None when there is
    none."""
    for target, known_method, operation in operations():
        if known_method == method and target.rsplit("/", 1)[1] == name and \
                "requestBody" in operation:
            return operation["requestBody"]["content"]["application/json"]["schema"]
    return None


def reply_schema(method, target, status):
    """The schema of a reply; None when the operation does not describe this status."""
    for known_target, known_method, operation in operations():
        if (known_target, known_method) == (target, method):
            replies = operation["responses"]
            reply = replies.get(str(status)) or replies.get(f"{status // 100}XX")
            return reply and resolved(reply)["content"]["application/json"]["schema"]
    return None


def body_faults(folder):
    """What is wrong with the recorded bodies in a folder, one line each."""
    lines = []
    for name in sorted(os.listdir(folder)):
        parts = re.fullmatch(r"\d+-([A-Z]+)-([A-Za-z]+)\.json", name)
        schema = parts and request_schema(*parts.groups())
        if not schema:
            lines.append(f"{name}: no request has such a body.")
            continue
        try:
            with open(os.path.join(folder, name), encoding="utf-8") as file:
                body = json.load(file)
        except ValueError as error:
            lines.append(f"{name}: {error}")
            continue
        lines += [f"{name}: {fault}" for fault in faults(schema, body)]
    return lines


class Seen:
    """Which members, and which of the known values, documents have shown."""

    def __init__(self):
        self.members = set()
        self.values = {}

    def note(self, schema, instance, path):
        schema = resolved(schema)
        if "x-known-values" in schema:
            self.values.setdefault(path, set()).add(instance)
        if isinstance(instance, dict):
            for name, member in instance.items():
                if name in schema.get("properties", {}):
                    self.members.add(path + "." + name)
                    self.note(schema["properties"][name], member, path + "." + name)
        elif isinstance(instance, list):
            for item in instance:
                self.note(schema["items"], item, path + "[]")


def members_of(schema, path):
    """All members that a schema describes, with the known values of each."""
    schema = resolved(schema)
    if "items" in schema:
        yield from members_of(schema["items"], path + "[]")
    for name, member in schema.get("properties", {}).items():
        inner = path + "." + name
        yield inner, resolved(member).get("x-known-values", [])
        yield from members_of(member, inner)


def status_at(*path):
    """A function that finds the member at a path in a state document's status."""
    def find(document):
        value = document["status"]
        for step in path:
            value = value[step]
        return value
    return find


directory_state = status_at("directory", "state")
reachable = status_at("directory", "reachable")
relay_state = status_at("relay", "state")
https_state = status_at("https", "state")
listeners = status_at("listeners")


def arrives_later(document):
    return any(listener["seconds"] < 10 and "f" in listener for listener in listeners(document))


def one_failed(document):
    return any(not receiver["running"] for receiver in document["status"]["started"])


# Until when each scenario is watched. Its time passes with the requests: whatever lasts for more
# than a second is seen, on every computer.
LIFE = ("--speed", "0", "--step", "1")
WATCHED = [
    ("first-run", lambda d: directory_state(d) == "not registered"),
    ("on-air", arrives_later),
    ("off-air", lambda d: directory_state(d) == "checked in"),
    ("relay", lambda d: any(listener["relayed"] for listener in listeners(d))),
    ("relay-refused", lambda d: relay_state(d) == "connected"),
    ("relay-unreachable", lambda d: relay_state(d) == "connected"),
    ("unreachable", lambda d: directory_state(d) == "checked in" and not reachable(d)),
    ("check-in-failed", reachable),
    ("busy", arrives_later),
    ("certificate", lambda d: https_state(d) == "active"),
    ("receiver-failed", one_failed),
    ("not-owner", None),
    ("broker-down", lambda d: not d["status"]["broker"]),
    ("slow", lambda d: True),
    ("no-devices", lambda d: not d["status"]["started"]),
    ("register-refused", lambda d: directory_state(d) == "not registered"),
    ("long-texts", one_failed),
    ("quiet", listeners),
]


class Document(unittest.TestCase):
    def test_every_schema_is_one(self):
        for name, schema in API["components"]["schemas"].items():
            with self.subTest(name):
                jsonschema.Draft202012Validator.check_schema(schema)

    def test_every_member_has_a_meaning(self):
        for name, schema in API["components"]["schemas"].items():
            for path, _ in members_of(schema, name):
                with self.subTest(path):
                    node = schema
                    for step in re.findall(r"\.(\w+)|(\[\])", path):
                        node = resolved(node)
                        node = node["properties"][step[0]] if step[0] else node["items"]
                    node = resolved(node)
                    self.assertTrue("description" in node or "properties" in node, path)

    def test_every_example_is_valid(self):
        count = 0

        def check(schema, instance, where):
            nonlocal count
            count += 1
            with self.subTest(where):
                self.assertEqual(faults(schema, instance), [])

        def walk_schema(schema, where):
            for example in schema.get("examples", []):
                check(schema, example, where)
            for name, member in schema.get("properties", {}).items():
                walk_schema(member, where + "." + name)

        for name, schema in API["components"]["schemas"].items():
            walk_schema(schema, name)
        for target, method, operation in operations():
            contents = [(status, resolved(reply)["content"])
                        for status, reply in operation["responses"].items()]
            if "requestBody" in operation:
                contents.append(("body", operation["requestBody"]["content"]))
            for status, content in contents:
                media = content["application/json"]
                self.assertTrue(media["examples"], f"{method} {target} {status}")
                for name, example in media["examples"].items():
                    check(media["schema"], example_value(example), f"{method} {target} {status} {name}")
        self.assertGreater(count, 30)

    def test_every_operation_wants_the_three_header_fields(self):
        for target, method, operation in operations():
            fields = {resolved(parameter)["name"]: resolved(parameter)["schema"]["const"]
                      for parameter in operation["parameters"]}
            self.assertEqual(fields, {"Host": "tarnwave", "X-Tarnwave": "1",
                                      "Content-Type": "application/json"}, f"{method} {target}")

    def test_the_service_of_the_tests_answers_every_request_as_described(self):
        self.assertEqual({f"{method} {target}" for target, method, _ in operations()},
                         REQUESTS.keys(), "tests/support/stand_in_service.py")
        for key, request in REQUESTS.items():
            with self.subTest(key):
                self.assertEqual(faults(reply_schema(*key.split(" "), 200), request.reply), [])


class Scenarios(unittest.TestCase):
    def test_all_are_watched(self):
        listed = subprocess.run([PROGRAM, "--list-scenarios"], capture_output=True, text=True,
                                check=True, timeout=30).stdout
        self.assertEqual([line.split()[0] for line in listed.splitlines()],
                         [name for name, _ in WATCHED])

    def test_each_sends_what_is_described_and_together_they_send_all_of_it(self):
        seen = Seen()
        for name, condition in WATCHED:
            with self.subTest(name), \
                    Simulator(PROGRAM, "--scenario", name, *LIFE, "--delay-ms", "0") as simulator:
                self.watch(simulator, condition, seen)
        self.watch_a_relay_without_key(seen)
        self.watch_all_devices(seen)

        described = [*members_of(schema_named("StateDocument"), "state"),
                     *members_of(schema_named("Devices"), "devices")]
        self.assertGreater(len(described), 60)
        for path, known_values in described:
            self.assertIn(path, seen.members)
            for value in known_values:
                if not path.startswith("state.settings"):
                    self.assertIn(value, seen.values[path], path)
            if path.endswith(".state"):
                self.assertEqual(seen.values[path], set(known_values), path)

    def watch(self, simulator, condition, seen):
        """Checks every document until one fulfils the condition; None: all are refused."""
        def look():
            reply = simulator.request("GET", "/api/state")
            document = reply.document()
            self.assertEqual(faults(reply_schema("GET", "/api/state", reply.status), document), [])
            if condition is None:
                return reply.status == 403
            self.assertEqual(reply.status, 200)
            seen.note(schema_named("StateDocument"), document, "state")
            return condition(document)
        simulator.wait_until(look)

    def watch_a_relay_without_key(self, seen):
        with Simulator(PROGRAM, "--scenario", "off-air", "--speed", "0") as simulator:
            settings = simulator.state()["settings"]
            settings["relay"]["enabled"] = True
            self.assertEqual(simulator.request("PUT", "/api/settings", settings).status, 200)
            self.watch(simulator, lambda d: relay_state(d) == "no key", seen)

    def watch_all_devices(self, seen):
        with Simulator(PROGRAM, "--scenario", "first-run", *LIFE) as simulator:
            def look():
                devices = simulator.request("GET", "/api/devices").document()
                self.assertEqual(faults(schema_named("Devices"), devices), [])
                seen.note(schema_named("Devices"), devices, "devices")
                return "rx888" in [device["backend"] for device in devices]
            simulator.wait_until(look)


class Requests(unittest.TestCase):
    def exchange(self, simulator, method, target, body, status):
        """Makes a request; its body, its reply's status and body must be as they should."""
        reply = simulator.request(method, target, body)
        self.assertEqual(reply.status, status, reply.body)
        schema = reply_schema(method, target, status)
        self.assertIsNotNone(schema)
        self.assertEqual(faults(schema, reply.document()), [])
        return reply.document()

    def test_each_is_answered_as_described(self):
        with tempfile.TemporaryDirectory() as folder, \
                Simulator(PROGRAM, "--scenario", "on-air", "--speed", "0",
                          "--record", folder) as simulator:
            document = self.exchange(simulator, "GET", "/api/state", None, 200)
            settings = document["settings"]
            settings["network"]["port"] = 8.074E3
            settings["receivers"][0]["lo"] = 6.9e6
            listener = document["status"]["listeners"][0]
            self.exchange(simulator, "PUT", "/api/settings", settings, 200)
            self.exchange(simulator, "GET", "/api/devices", None, 200)
            self.exchange(simulator, "POST", "/api/ban", {"address": listener["address"]}, 200)
            self.exchange(simulator, "POST", "/api/kick", {"number": listener["number"]}, 404)
            self.exchange(simulator, "POST", "/api/register", {"email": "a@b.example"}, 409)
            listener = self.exchange(simulator, "GET", "/api/state", None,
                                     200)["status"]["listeners"][0]
            self.exchange(simulator, "POST", "/api/kick", {"number": listener["number"]}, 200)
            self.assertEqual(len(os.listdir(folder)), 5)
            self.assertEqual(body_faults(folder), [])
        with Simulator(PROGRAM, "--scenario", "first-run") as simulator:
            self.exchange(simulator, "POST", "/api/register", {"email": "a@b.example"}, 200)

    def test_the_simulator_knows_every_request_and_its_method(self):
        with Simulator(PROGRAM) as simulator:
            for target, method, _ in operations():
                reply = simulator.request("DELETE", target)
                self.assertEqual((reply.status, reply.header.get("allow")), (405, method), target)

    def test_every_refusal_has_its_reason(self):
        with Simulator(PROGRAM) as simulator:
            for reply in (simulator.request("GET", "/api/state", header={"Host": "tarnwave"}),
                          simulator.request("GET", "/"),
                          simulator.request("POST", "/api/state", {}),
                          simulator.request("POST", "/api/kick", b"{")):
                self.assertGreaterEqual(reply.status, 400)
                self.assertEqual(faults(schema_named("Refusal"), reply.document()), [])

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

        schema = schema_named("SettingsToSave")
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
