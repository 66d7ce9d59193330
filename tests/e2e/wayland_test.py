# SPDX-License-Identifier: MIT
"""What is Wayland's own. Run by scripts/checks/wayland."""

import unittest

from harness import Case
from services import ROOT


class Surface(Case):
    def test_a_desktop_finds_the_program_by_its_app_id(self):
        self.station("quiet")
        program = self.open(WAYLAND_DEBUG="1")
        program.quit()
        app_id = program.errors().split('set_app_id("')[1].split('"')[0]
        self.assertTrue((ROOT / "data" / f"{app_id}.desktop").exists(), app_id)


if __name__ == "__main__":
    unittest.main()
