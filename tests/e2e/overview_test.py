# SPDX-License-Identifier: MIT
"""The Overview page: the checklist, the station link, the listeners, and polls that disturb not."""

import unittest

from harness import (Atspi, Case, HOST, Role, State, extents, has_state, is_sensitive, key,
                     state_document, text_in, wait_for, xdotool)


def listener(number, address, **more):
    return {"number": number, "address": address, "seconds": 75, "f": 7074000, "mode": "USB",
            "listening": True, **more}


def listeners(*records):
    document = state_document()
    document["status"]["listeners"] = list(records)
    return document


class Page(Case):
    def rows(self, program):
        """The listeners table, row by row."""
        table = program.find(Role.TABLE)
        if table is None:
            return []
        return [[Atspi.Table.get_accessible_at(table, row, column).get_name()
                 for column in range(4)] for row in range(Atspi.Table.get_n_rows(table))]

    def select(self, program, row):
        table = program.get(Role.TABLE)
        wait_for(lambda: Atspi.Table.add_row_selection(table, row), "a row to be selected")

    def selected(self, program):
        table = program.get(Role.TABLE)
        return [row for row in range(Atspi.Table.get_n_rows(table))
                if Atspi.Table.is_row_selected(table, row)]


class Checklist(Page):
    def test_the_first_run_shows_what_is_to_be_done(self):
        self.station("first-run")
        program = self.open()
        self.assertEqual(program.header(), "Off the air: no receiver is running")
        labels = program.labels()
        for text in ("Name your station and enter its grid square", "Share at least one receiver",
                     f"Register the station for the list on {HOST}",
                     "Forward port 8073 on your router to this computer"):
            self.assertEqual(labels[labels.index(text) - 1], "○")
        self.assertIn("No receiver is on the air yet.", labels)
        self.assertIn("Nobody is listening right now.", labels)

    def test_each_item_leads_to_its_page(self):
        self.station("first-run")
        program = self.open()
        for at, page in ((0, "station"), (1, "receivers"), (2, "internet"), (3, "internet")):
            program.press("Go there →", at=at)
            wait_for(lambda: program.shown_page() == page, f"the page {page}")
            program.page("overview")
        program.press("Choose receivers →")
        wait_for(lambda: program.shown_page() == "receivers", "the page receivers")

    def test_the_focus_stays_on_an_item_while_a_poll_changes_others(self):
        document = state_document()
        document["settings"]["station"]["grid"] = ""
        document["status"]["receivers"] = []
        document["status"]["directory"]["reachable"] = False
        service = self.scripted_service(document)
        program = self.open()
        buttons = [b for b in program.everything(Role.PUSH_BUTTON) if b.get_name() == "Go there →"]
        self.assertEqual(len(buttons), 3)
        program.focus(buttons[0])
        document["status"]["receivers"] = state_document()["status"]["receivers"]
        service.answers("GET /api/state", 200, document)
        program.poll()
        wait_for(lambda: program.header().startswith("On the air"), "the receiver on the air")
        self.assertEqual(program.focused().get_name(), "Go there →")
        program.keys("Return")
        wait_for(lambda: program.shown_page() == "station", "the page it leads to")

    def test_a_finished_list_hides(self):
        self.scripted_service()
        self.assertNotIn("Getting started", self.open().labels())


class OnTheAir(Page):
    def test_receivers_are_listed_with_their_ranges(self):
        document = state_document()
        document["status"]["receivers"] = [
            {"device": "Tuner <1> & co", "attached": True, "lo": 7000000, "hi": 7300000},
            {"device": "", "attached": False, "lo": 144000000, "hi": 145999600}]
        document["status"]["started"] = [{"running": True}, {
            "running": False, "serial": "00000001", "log": "usb_open <-3> & gone"}]
        self.scripted_service(document)
        program = self.open()
        labels = program.labels()
        for text in ("Tuner <1> & co   7 – 7.3 MHz", "shared from Dialhouse",
                     "Receiver   144 – 146 MHz", "started by Tarnwave",
                     "00000001 is not running. Its log: usb_open <-3> & gone"):
            self.assertIn(text, labels)
        self.assertEqual(program.header(), "On the air · 2 receivers · 0 of 20 listening · "
                                           f"listed on {HOST}")

    def test_the_link_can_be_copied_and_pasted(self):
        self.scripted_service()
        program = self.open()
        program.get(Role.PUSH_BUTTON, "http://203.0.113.17:8073/")
        program.press("Copy link").wait_for_footer("Station link copied.")
        program.page("station")
        entry = program.focus(program.entry("Contact"))
        key("ctrl+a", "ctrl+v")
        wait_for(lambda: text_in(entry) == "http://203.0.113.17:8073/", "the pasted link")

    def test_a_click_is_not_lost_to_a_poll_between_press_and_release(self):
        service = self.scripted_service(listeners(listener(1, "203.0.113.7")))
        program = self.open()
        at = extents(program.get(Role.PUSH_BUTTON, "Copy link"))
        xdotool("mousemove", at.x + at.width // 2, at.y + at.height // 2, "mousedown", 1)
        service.answers("GET /api/state", 200, listeners(listener(2, "203.0.113.8")))
        program.poll()
        wait_for(lambda: [row[0] for row in self.rows(program)] == ["2"], "the poll's news")
        xdotool("mouseup", 1)
        program.wait_for_footer("Station link copied.")


class Listeners(Page):
    def test_the_table_tells_who_listens_to_what(self):
        self.scripted_service(listeners(
            listener(7, "203.0.113.7"),
            listener(8, "2001:db8::8", listening=False, f=144000000, mode="FM", seconds=3725),
            {"number": 9, "address": "198.51.100.9", "seconds": 5, "relayed": True}))
        program = self.open()
        self.assertEqual(self.rows(program), [
            ["7", "203.0.113.7", "7.074 MHz USB", "1:15"],
            ["8", "2001:db8::8", "144 MHz FM (waterfall only)", "62:05"],
            ["9", "198.51.100.9", f"via {HOST} · ", "0:05"]])
        self.assertIn("Listening now · 3 of 20", program.labels())
        self.assertFalse(is_sensitive(program.get(Role.PUSH_BUTTON, "End session")))
        self.assertFalse(is_sensitive(program.get(Role.PUSH_BUTTON, "Block address…")))

    def test_ending_a_session_drops_it_from_the_table_at_once(self):
        station = self.station("quiet")
        program = self.open()
        rows = self.rows(program)
        self.select(program, 1)
        program.press("End session").wait_for_footer(f"Ended the session of {rows[1][1]}.")
        wait_for(lambda: [r[0] for r in self.rows(program)] == [rows[0][0], rows[2][0]],
                 "the session to go")
        self.assertEqual(station.bodies("POST-kick"), [{"number": int(rows[1][0])}])
        self.assertEqual(station.bodies("POST-ban"), [])

    def test_blocking_asks_first_and_enter_and_escape_shut_nobody_out(self):
        station = self.station("quiet")
        program = self.open()
        address = self.rows(program)[0][1]
        self.select(program, 0)
        for answer in ("Return", "Escape"):
            program.press("Block address…")
            self.assertEqual(program.dialog_texts(), [
                f"Block {address}?",
                "Their session ends now and the address cannot listen again. You can remove it "
                "from the blocked addresses on the Listeners page."])
            program.keys(answer)
            wait_for(lambda: not program.find_dialog(), "the question to go")
        self.assertEqual((station.bodies("POST-ban"), station.bodies("POST-kick")), ([], []))
        self.assertEqual(program.footer(), "")

    def test_blocking_ends_the_session_and_lists_the_address(self):
        station = self.station("quiet")
        program = self.open()
        number, address = self.rows(program)[0][:2]
        self.select(program, 0)
        program.press("Block address…")
        # The button that blocks is named in the user's language; it is the last one.
        program.answer(program.dialog_buttons()[-1])
        program.wait_for_footer(f"Blocked {address}.")
        self.assertEqual(station.bodies("POST-ban"), [{"address": address}])
        self.assertEqual(station.bodies("POST-kick"), [{"number": int(number)}])
        program.page("listeners")
        box = program.entry("One per line: an address such as 203.0.113.7, or a range such as "
                            "203.0.113.0/24.")
        self.assertIn(address, text_in(box).split())

    def test_blocking_beside_unsaved_edits_leaves_them(self):
        self.station("quiet")
        program = self.open("station")
        program.type_into("Operator", "Sam").page("overview")
        address = self.rows(program)[0][1]
        self.select(program, 0)
        program.press("Block address…").answer(program.dialog_buttons()[-1])
        program.wait_for_footer(f"Blocked {address}.")
        self.assertTrue(program.is_unsaved())
        self.assertEqual(program.page("station").text_of("Operator"), "Sam")

    def test_the_selection_follows_its_listener_over_polls(self):
        service = self.scripted_service(listeners(listener(1, "203.0.113.1"),
                                                  listener(2, "203.0.113.2")))
        program = self.open()
        self.select(program, 1)
        service.answers("GET /api/state", 200, listeners(listener(2, "203.0.113.2"),
                                                            listener(3, "203.0.113.3")))
        program.poll()
        wait_for(lambda: [r[0] for r in self.rows(program)] == ["2", "3"], "the news")
        self.assertEqual(self.selected(program), [0])
        service.answers("GET /api/state", 200, listeners(listener(3, "203.0.113.3")))
        program.poll()
        wait_for(lambda: [r[0] for r in self.rows(program)] == ["3"], "the listener to leave")
        self.assertEqual(self.selected(program), [])
        self.assertFalse(has_state(program.get(Role.PUSH_BUTTON, "End session"), State.SENSITIVE))

    def test_the_table_stays_scrolled_over_polls(self):
        everybody = [listener(n, f"203.0.113.{n}") for n in range(1, 41)]
        service = self.scripted_service(listeners(*everybody))
        program = self.open()
        table = program.focus(program.get(Role.TABLE))
        key("End")
        last = Atspi.Table.get_accessible_at(table, 39, 1)
        # A cell that is out of view has no place on the screen.
        wait_for(lambda: extents(last).y > 0, "the last row in view")
        before = extents(last).y
        service.answers("GET /api/state", 200, listeners(
            *everybody[:20], *[dict(other, seconds=80) for other in everybody[20:]]))
        program.poll()
        wait_for(lambda: self.rows(program)[39][3] == "1:20", "the news")
        self.assertEqual(extents(Atspi.Table.get_accessible_at(table, 39, 1)).y, before)


class Health(Page):
    def test_a_service_that_stops_and_comes_back(self):
        station = self.station("quiet")
        program = self.open()
        header, rows = program.header(), self.rows(program)
        station.stop()
        program.poll().wait_for_header("The Tarnwave service is not answering")
        self.assertEqual(self.rows(program), rows)
        self.station("quiet")
        program.poll().wait_for_header(header)

    def test_an_error_counts_as_no_answer_and_the_clock_brings_the_news(self):
        service = self.scripted_service()
        program = self.open()
        service.answers("GET /api/state", 500, {"error": "Oops."})
        program.wait_for_header("The Tarnwave service is not answering")
        service.answers("GET /api/state", 200, state_document())
        program.wait_for_header(
            f"On the air · 1 receiver · 0 of 20 listening · listed on {HOST}")

    def test_a_slow_station_is_usable(self):
        self.station("slow", "--delay-ms", "300")
        program = self.open("station")
        program.type_into("Operator", "Sam").save()


if __name__ == "__main__":
    unittest.main()
