#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Runs the real program through thousands of polls and checks that what it uses stays flat.

soak.py PROGRAM LIBRARY POLLS [--faults]: the library is the preloaded remote_control.cpp. Each state
document differs in its listeners, receivers, relay and certificate, and between the polls pages are
turned and every request is made. At the end of each hundred polls all is quiet, and the figures are
taken. With --faults each kind of request meets, one after the other, the faults that must not end
the program. Needs a display (scripts/soak brings one).
"""
import copy
import itertools
import json
import os
import pathlib
import random
import signal
import statistics
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "support"))
from remote_program import Program  # noqa: E402 (the path comes first)
from stand_in_service import (  # noqa: E402 (the path comes first)
    FAULTS, REQUESTS, StandInService, fault_bytes, reply_bytes)

# Polls from one line of figures to the next, the last of which see the same document.
ROUND = 100
QUIET_POLLS = 3

# The most that the figures may rise from their first third to their last one.
MOST_HEAP_PER_POLL = 16       # bytes
MOST_HEAP_AT_ALL = 384 << 10  # bytes; what the texts and rows of the moment make up
MOST_MORE_DESCRIPTORS = 0
MOST_MORE_WIDGETS = 0
MOST_MORE_SOURCES = 2         # GTK adds and removes some of its own


class Station:
    def __init__(self, faulty):
        self.quiet = False
        self.faulty = faulty
        # For each kind of request, one after the other, those that must not end the program.
        self.faults = {key: itertools.cycle([fault for fault in FAULTS
                                             if not request.ends_program(fault)])
                       for key, request in REQUESTS.items()}
        self.faults_met = {key: [] for key in REQUESTS}
        self.document = copy.deepcopy(REQUESTS["GET /api/state"].reply)
        self.quiet_settings = copy.deepcopy(self.document["settings"])
        self.chance = random.Random(1)
        self.newest = 100
        self.requests = dict.fromkeys(REQUESTS, 0)

    def state(self):
        if self.quiet:
            return {"settings": self.quiet_settings, "status": self.document["status"]}
        document = copy.deepcopy(self.document)
        status, chance = document["status"], self.chance
        self.newest += chance.randrange(3)
        status["listeners"] = [
            {"number": self.newest - place, "address": f"203.0.113.{chance.randrange(256)}",
             "seconds": chance.randrange(9999), "f": chance.randrange(30_000_000),
             "mode": chance.choice(["USB", "LSB", "CW"]), "listening": chance.random() < 0.8,
             "relayed": chance.random() < 0.3} for place in range(chance.randrange(25))]
        status["receivers"] = [
            {"device": f"Receiver {chance.randrange(9)}", "attached": chance.random() < 0.5,
             "lo": 7_000_000, "hi": 7_300_000} for _ in range(chance.randrange(4))]
        status["started"] = [
            {"running": chance.random() < 0.5, "serial": str(chance.randrange(9)),
             "log": "USB error " * chance.randrange(9)} for _ in range(chance.randrange(3))]
        status["broker"] = chance.random() < 0.9
        document["settings"]["relay"]["enabled"] = chance.random() < 0.5
        status["relay"] = {
            "state": chance.choice(["off", "no key", "connecting", "connected", "refused",
                                    "unreachable"]),
            "url": "https://relay.example/k1abc/", "listeners": chance.randrange(50),
            "error": "No route." * chance.randrange(3)}
        status["https"] = {"state": chance.choice(["active", "requesting", "failed", ""]),
                           "name": "k1abc.example", "expires": chance.randrange(2**31),
                           "error": "Port 80 is closed."}
        status["directory"]["state"] = chance.choice(["checked in", "check-in failed",
                                                      "not registered", "registered"])
        return document

    def reply(self, request):
        """The bytes of the answer, good or not."""
        key = request.key
        good = self.answer(key, request.body)
        # The first two answers are for the start, which a fault ends.
        often = 0.3 if key == "GET /api/state" else 0.6
        if not self.faulty or self.quiet or sum(self.requests.values()) <= 2 or \
                self.chance.random() > often:
            return reply_bytes(200, good)
        fault = next(self.faults[key])
        self.faults_met[key].append(fault["fault"])
        return fault_bytes(fault, good)

    def answer(self, key, body):
        self.requests[key] += 1
        if key == "GET /api/state":
            return self.state()
        if key == "PUT /api/settings":
            self.document["settings"] = json.loads(body)
            self.document["settings"]["receivers"] = self.quiet_settings["receivers"]
            return {"restart": self.chance.random() < 0.5}
        if key == "GET /api/devices":
            return [{"backend": "rtl-sdr", "serial": str(self.chance.randrange(4)), "model": "V4",
                     "available": self.chance.random() < 0.5} for _ in range(3)]
        return REQUESTS[key].reply


def live(program, station, polls):
    """Makes so many polls, with a user's actions between them; returns the figures of each round."""
    actions = [request.commands for key, request in REQUESTS.items() if key != "GET /api/state"]
    figures = []
    for poll in range(1, polls + 1):
        turn = poll % ROUND
        if turn == ROUND - QUIET_POLLS:
            # The first page, and what the service has: cards of what was only found are gone.
            station.quiet = True
            program.do(f"edit Hilltop {poll}", *REQUESTS["PUT /api/settings"].commands, "page 0")
        elif not station.quiet and turn % 7 == 0:
            program.do(f"page {turn // 7}")
        elif not station.quiet and turn % 4 == 0:
            program.do(f"edit Hilltop {poll}", *actions[turn // 4 % len(actions)])
        if program.do("poll") is None:
            break
        if turn == 0:
            figures.append({"polls": poll, **program.do("figures")})
            print(*(f"{name} {value}" for name, value in figures[-1].items()), flush=True)
            station.quiet = False
    return figures


def main():
    program_path, library, polls = sys.argv[1:4]
    faulty = sys.argv[4:] == ["--faults"]
    with tempfile.TemporaryDirectory() as folder:
        socket_path = os.path.join(folder, "socket")
        station = Station(faulty)
        server = StandInService(socket_path, station.reply)
        program = Program(program_path, library, pathlib.Path(folder), socket_path)
        signal.signal(signal.SIGTERM, lambda *_: (program.kill(), sys.exit(1)))
        program.hear()
        figures = live(program, station, int(polls))
        status, said = program.close()
        server.stop()
        print("requests:", ", ".join(f"{count} {key}" for key, count in
                                     sorted(station.requests.items())))
        if (status, said) != (0, ""):
            sys.exit(f"the program ended with {status}: {said}")
    # The first fifth is left out: GTK's caches and the fonts are still being filled.
    figures = figures[len(figures) // 5:]
    if len(figures) < 6:
        sys.exit("too few polls to say anything: at least 700")
    third = len(figures) // 3

    def rise(name):
        return (statistics.median(each[name] for each in figures[-third:])
                - statistics.median(each[name] for each in figures[:third]))

    distance = rise("polls")
    slopes = {name: rise(name) / distance for name in ("heap", "resident")}
    print(f"heap {slopes['heap']:+.2f} bytes a poll, resident {slopes['resident']:+.2f} bytes a "
          f"poll; descriptors {rise('descriptors'):+.0f}, sources {rise('sources'):+.0f}, widgets "
          f"{rise('widgets'):+.0f}")
    faults = []
    if rise("heap") > MOST_HEAP_PER_POLL * distance + MOST_HEAP_AT_ALL:
        faults.append("the heap grows")
    for name, most in (("descriptors", MOST_MORE_DESCRIPTORS), ("sources", MOST_MORE_SOURCES),
                       ("widgets", MOST_MORE_WIDGETS)):
        if rise(name) > most:
            faults.append(f"the {name} grow")
    for key, count in station.requests.items():
        if count == 0:
            faults.append(f"nobody ever asked {key}")
        if faulty:
            met = station.faults_met[key]
            print(f"faults met by {key}: {len(met)}, of {len(set(met))} kinds")
    sys.exit("; ".join(faults) or None)


if __name__ == "__main__":
    main()
