#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares what a release changes by hand with the version in CMakeLists.txt.

The program, the simulator and the manual pages get the version from CMake. The files below hold
words about a release, so they are written by hand; docs/releasing.md lists them.
"""

import datetime
import pathlib
import re
import unittest
import xml.etree.ElementTree

import yaml

PROJECT = pathlib.Path(__file__).resolve().parent.parent
DATA = PROJECT / "data"


def text_of(name):
    return (PROJECT / name).read_text(encoding="utf-8")


def newest_release_in_changelog():
    """Version and date of the first heading that has them; "Unreleased" may stand above it."""
    match = re.search(r"^## (\S+) \((\d{4}-\d\d-\d\d)\)$", text_of("CHANGELOG.md"), re.MULTILINE)
    return match.groups()


class Release(unittest.TestCase):
    def setUp(self):
        self.version = re.search(r"^project\(\S+ VERSION (\S+)", text_of("CMakeLists.txt"),
                                 re.MULTILINE)[1]
        self.date = newest_release_in_changelog()[1]

    def test_the_changelog_tells_what_is_new_in_this_version(self):
        self.assertEqual(newest_release_in_changelog()[0], self.version, "CHANGELOG.md")

    def test_the_debian_package_has_this_version(self):
        name, version = re.match(r"(\S+) \((\S+)\)", text_of("debian/changelog")).groups()
        stamp = re.search(r"^ -- .*>  (.*)$", text_of("debian/changelog"), re.MULTILINE)[1]
        date = datetime.datetime.strptime(stamp, "%a, %d %b %Y %H:%M:%S %z").date().isoformat()
        self.assertEqual((name, version, date), ("tarnwave-settings", self.version, self.date),
                         "debian/changelog")

    def test_software_centres_show_this_version(self):
        file = DATA / "org.tarnwave.Settings.metainfo.xml"
        release = xml.etree.ElementTree.parse(file).find("releases/release")
        self.assertEqual((release.get("version"), release.get("date")), (self.version, self.date),
                         file.name)

    def test_the_description_of_the_service_has_this_version(self):
        self.assertEqual(yaml.safe_load(text_of("docs/service-api.yaml"))["info"]["version"],
                         self.version, "docs/service-api.yaml")

    def test_desktops_and_software_centres_know_the_program_by_one_name(self):
        metainfo = xml.etree.ElementTree.parse(DATA / "org.tarnwave.Settings.metainfo.xml")
        self.assertEqual(metainfo.findtext("id") + ".desktop", metainfo.findtext("launchable"))
        self.assertTrue((DATA / metainfo.findtext("launchable")).is_file())


if __name__ == "__main__":
    unittest.main()
