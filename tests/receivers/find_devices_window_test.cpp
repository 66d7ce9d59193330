// SPDX-License-Identifier: MIT
#include "receivers/find_devices.h"

#include "link/json_access.h"
#include "receivers/receiver_rows.h"
#include "support/window_fixture.h"

namespace {

json::object device(const char* backend, const char* serial, const char* model, bool available) {
    return {{"backend", backend}, {"serial", serial}, {"model", model}, {"available", available}};
}

const json::object rspdx = device("sdrplay", "2305012345", "RSPdx", true);
const json::object dongle = device("rtl-sdr", "00000001", "RTL-SDR Blog V4", true);

class FindDevices : public WindowTest {
protected:
    FindDevices() {
        load(state_document());
        show_page_at_once("receivers");
        service.forget_requests();
    }

    ~FindDevices() override { drain_events(); }

    void find(const json::array& devices) {
        service.will_answer("GET", "/api/devices", 200, json::serialize(devices));
        find_devices();
    }

    std::string status() const { return text_of(widgets.receivers_status); }

    static Receiver& receiver(std::size_t index) { return widgets.receiver_list.at(index); }

    static double shown(GtkWidget* spin) {
        return gtk_spin_button_get_value(GTK_SPIN_BUTTON(spin));
    }

    std::string said_meanwhile{};
    bool sensitive_meanwhile = true;
};

TEST_F(FindDevices, SaysWhatItFoundAndAddsWhatIsNew) {
    find({rspdx, dongle});
    EXPECT_EQ(status(), "2 found.");
    EXPECT_EQ(children_of(widgets.receiver_rows_box).size(), 2U);
    find({rspdx, device("rx888", "R1", "RX-888", false)});
    EXPECT_EQ(status(), "2 found, 1 new: switch on the ones to share.");
    ASSERT_EQ(widgets.receiver_list.size(), 3U);
    ASSERT_EQ(children_of(widgets.receiver_rows_box).size(), 3U);
    EXPECT_FALSE(gtk_switch_get_active(GTK_SWITCH(receiver(2).share_switch)));
    EXPECT_NE(find_label(widgets.receiver_rows_box,
                         "HF direct sampling · serial R1 · in use by another program"),
              nullptr);
    EXPECT_FALSE(widgets.dirty);
}

TEST_F(FindDevices, SaysWhenTheServiceDidNotAnswer) {
    for (const int answer : {0, 204, 404, 500}) {
        SCOPED_TRACE(answer);
        const std::vector<GtkWidget*> rows = children_of(widgets.receiver_rows_box);
        service.will_answer("GET", "/api/devices", answer, "[]");
        if (answer == 0)
            service.stop();
        find_devices();
        EXPECT_EQ(status(), "The Tarnwave service did not answer.");
        EXPECT_EQ(children_of(widgets.receiver_rows_box), rows);
        EXPECT_EQ(widgets.receiver_list.size(), 2U);
        if (answer == 0)
            service.start();
    }
}

TEST_F(FindDevices, MakesTheRowsAnewEvenWhenItFoundNothing) {
    const std::vector<GtkWidget*> rows = children_of(widgets.receiver_rows_box);
    for (GtkWidget* row : rows)
        g_object_ref(row);
    find({});
    for (GtkWidget* row : children_of(widgets.receiver_rows_box))
        EXPECT_EQ(std::count(rows.begin(), rows.end(), row), 0);
    for (GtkWidget* row : rows)
        g_object_unref(row);
}

TEST_F(FindDevices, KeepsEditsThatAreNotSaved) {
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(receiver(0).low_spin), 14);
    // Typed, and not taken over yet.
    type_into(receiver(0).high_spin, "14,35");
    gtk_switch_set_active(GTK_SWITCH(receiver(1).share_switch), FALSE);
    find({rspdx, dongle});
    EXPECT_EQ(shown(receiver(0).low_spin), 14);
    EXPECT_EQ(shown(receiver(0).high_spin), 14.35);
    EXPECT_FALSE(gtk_switch_get_active(GTK_SWITCH(receiver(1).share_switch)));
    EXPECT_EQ(receiver(0).lo, 14e6);
    EXPECT_DOUBLE_EQ(receiver(0).hi, 14.35e6);
    EXPECT_FALSE(receiver(1).enabled);
    EXPECT_TRUE(widgets.dirty);
}

TEST_F(FindDevices, KeepsEditsMadeWhileItLooks) {
    run_when_loop_turns([] {
        gtk_spin_button_set_value(GTK_SPIN_BUTTON(receiver(0).low_spin), 6.5);
        gtk_switch_set_active(GTK_SWITCH(receiver(0).share_switch), FALSE);
        type_into(receiver(1).high_spin, "145.5");
    });
    find({rspdx, dongle});
    EXPECT_EQ(receiver(0).lo, 6.5e6);
    EXPECT_FALSE(receiver(0).enabled);
    EXPECT_EQ(receiver(1).hi, 145.5e6);
    EXPECT_EQ(shown(receiver(0).low_spin), 6.5);
    EXPECT_EQ(shown(receiver(1).high_spin), 145.5);
}

TEST_F(FindDevices, SaysThatItLooksAndGreysItsButtonMeanwhile) {
    run_when_loop_turns([this] {
        said_meanwhile = status();
        sensitive_meanwhile = gtk_widget_get_sensitive(widgets.find_devices_button);
    });
    service.will_answer("GET", "/api/devices", 200, "[]");
    click(widgets.find_devices_button);
    EXPECT_EQ(requests_sent(), std::vector<std::string>{"GET /api/devices"});
    EXPECT_EQ(said_meanwhile, "Looking for receivers…");
    EXPECT_FALSE(sensitive_meanwhile);
    drain_events();
    EXPECT_TRUE(gtk_widget_get_sensitive(widgets.find_devices_button));
}

} // namespace
