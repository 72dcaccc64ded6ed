// Devices come, go and are found again; what waits in the ring; the lamps after a cable was pulled.

#include <thread>

#include "midi/devices.h"
#include "midi/lifecycle.h"
#include "midi/ring.h"
#include "platform/common/midi_queue.h"
#include "startup/helpers.h"
#include "startup/settings/midi_settings.h"
#include "tests/midi/surface.h"
#include "tests/support/approved.h"

namespace zv::test {
namespace {

constexpr int kRescan = 2000;

/// A surface's devices after each act of a script: what is open, what is shown, picked and sent.
class DevicesTest : public SurfaceTest {
  protected:
    static std::string shown(const ShownList& list) {
        std::string text = list.selected < 0 ? "-" : std::to_string(list.selected);
        for (const std::string& row : list.rows) text += (&row == &list.rows[0] ? " of " : "/") + row;
        return text;
    }
    void note(const std::string& what) {
        std::string ins, outs;
        for (const auto& [handle, input] : devices_.openInputs) ins += " " + input->device;
        for (const auto& [handle, device] : devices_.openOutputs)
            outs += " " + device +
                    (handle == hMidiOut        ? "(control)"
                     : handle == hMidiOutFixed ? "(fixed)"
                                               : "(?)");
        const Control& label = frmMain().display.lblMIDIDevice;
        text += what + ":" + (hMidiIn == 0 ? " -" : " in") + ins + "," + outs + "; \"" + label.caption() +
                (label.visible() ? "\"" : "\" hidden") + (MIDIInOpen ? " open" : "") +
                (midiTimers().TimerMIDI.enabled() ? " pumps" : "") +
                (midiTimers().TimerMIDIDevices.enabled() ? " looks" : "") + "; " + shown(cmbInDevsGUI) +
                "; " + shown(cmbMIDIOutFixedDevsGUI) + "; " + midiSettings.MIDIDevice + " " +
                std::to_string(midiSettings.MIDIEnabled) + std::to_string(midiSettings.MIDIAutoHide) + " " +
                midiSettings.MIDIOutFixedDevice + " " + std::to_string(midiSettings.MIDIOutFixedEnabled) +
                " " + std::to_string(midiSettings.MIDIOutFixedChan) + "/" +
                std::to_string(midiSettings.MIDIOutFixedVel);
        for (std::string& box : std::exchange(desktop().boxes, {})) {
            std::ranges::replace(box, '\n', '/'), std::erase(box, '\r');
            text += ", box: " + box;
        }
        text += "; " + sent() + "\n";
    }
    void act(const std::string& what, const std::function<void()>& does) {
        does();
        pass(kRescan + 50);
        note(what);
        // Once more: nothing goes on changing.
        const std::string before = std::exchange(text, {});
        pass(2 * kRescan);
        note(what);
        EXPECT_EQ(text.substr(0, text.rfind(';')), before.substr(before.rfind(what + ":"), text.rfind(';')))
            << "it does not come to rest";
        text = before;
    }
    void pick(const ShownList& list, void (*click)(int), const std::string& name) {
        ShownList copy = list;
        copy.select(name);
        click(copy.selected);
    }
    std::string text;
};

TEST_F(DevicesTest, AreTakenUpByNamePickedAndSwitchedOff) {
    write("MIDI.ini", "[Pad]\r\nJingle0=9010,901000,255\r\nOutReset=B00000\r\nOutStopAll=A00601,A00600\r\n");
    midiSettings.MIDIDevice = kPad;
    act("start", [] { StartMIDI(); });
    AllowMIDIFeedback();
    act("+Other", [&] { devices_.plug("Other"); });
    act("+Pad, in use", [&] { devices_.refuse = true, devices_.plug(kPad); });
    act("-Pad", [&] { devices_.refuse = false, devices_.unplug(kPad); });
    act("+Pad", [&] { devices_.plug(kPad); });
    act("+Third", [&] { devices_.plug("Third"); });
    act("-Pad", [&] { devices_.unplug(kPad); });
    act("-Other", [&] { devices_.unplug("Other"); });
    act("+Pad", [&] { devices_.plug(kPad); });
    act("-Third", [&] { devices_.unplug("Third"); });
    act("-Pad+Pad", [&] { devices_.unplug(kPad), devices_.plug(kPad); });
    act("-Pad+Pad, untold", [&] { devices_.tells = false, devices_.unplug(kPad), devices_.plug(kPad); });
    devices_.tells = true;
    sent();
    devices_.unplug(kPad), devices_.plug(kPad);
    pass(250);
    note("-Pad+Pad, at once");
    act("-Pad", [&] { devices_.unplug(kPad); });
    act("+Pad's input", [&] { devices_.plug(kPad, {true, false}); });
    act("+Pad's output", [&] { devices_.plug(kPad, {false, true}); });
    act("+Second", [&] { devices_.plug("Second"); });
    const auto input = [&](const std::string& name) { pick(cmbInDevsGUI, cmbInDevsGUI_Click, name); };
    const auto fixed = [&](const std::string& name) {
        pick(cmbMIDIOutFixedDevsGUI, cmbMIDIOutFixedDevsGUI_Click, name);
    };
    act("fixed output on", [] { ckMIDIEnable_Click(MidiSwitch::fixedOutput, true); });
    act("+Fixed", [&] { devices_.plug(kFixed, {false, true}); });
    act("the surface is the fixed output too", [&] { fixed(kPad); });
    act("Fixed picked", [&] { fixed(kFixed); });
    act("stop's note", [] { MIDIOutFixed(FixedNote::stop, true); });
    act("channel, velocity", [] {
        cmbMIDIOutFixedChan_Click(16), txtMIDIOutVel_Change(16), MIDIOutFixed(FixedNote::stop, false);
    });
    act("no such channel, velocity", [] {
        cmbMIDIOutFixedChan_Click(17), txtMIDIOutVel_Change(128), MIDIOutFixed(FixedNote::stop, true);
        cmbMIDIOutFixedChan_Click(0), txtMIDIOutVel_Change(-1), MIDIOutFixed(FixedNote::stop, true);
    });
    act("too soft", [] { txtMIDIOutVel_Change(15), MIDIOutFixed(FixedNote::stop, true); });
    act("-Fixed", [&] { devices_.unplug(kFixed); });
    act("+Fixed", [&] { devices_.plug(kFixed, {false, true}); });
    act("none picked", [] { cmbMIDIOutFixedDevsGUI_Click(0); });
    act("Fixed picked", [&] { fixed(kFixed); });
    act("Second picked", [&] { input("Second"); });
    act("its fixed one picked", [&] { fixed("Second"); });
    act("no input picked", [] { cmbInDevsGUI_Click(0); });
    act("Second fixed", [&] { fixed("Second"); });
    act("and picked", [&] { input("Second"); });
    for (const char* how : {"Pad picked", "and again"}) act(how, [&] { input(kPad); });
    act("input off", [] { ckMIDIEnable_Click(MidiSwitch::input, false); });
    act("label stays", [] { ckMIDIEnable_Click(MidiSwitch::autoHide, false); });
    act("input on", [] { ckMIDIEnable_Click(MidiSwitch::input, true); });
    act("hidden before", [] { MIDIHidden = true; });
    act("label hides", [] { ckMIDIEnable_Click(MidiSwitch::autoHide, true); });
    act("-Pad", [&] { devices_.unplug(kPad); });
    act("fixed output off", [] { ckMIDIEnable_Click(MidiSwitch::fixedOutput, false); });
    act("both off", [] {
        ckMIDIEnable_Click(MidiSwitch::input, false), ckMIDIEnable_Click(MidiSwitch::autoHide, false);
    });
    act("input on, Pad", [&] { ckMIDIEnable_Click(MidiSwitch::input, true), devices_.plug(kPad); });
    act("a message that is none",
        [] { midiOut.OutReset = "B08000", MIDIOutRefresh(-1), MIDIOutRefresh(-1); });
    EXPECT_LE(reports.size(), 1U);
    midiOut.OutReset = "B00000";
    act("the end", [] { EndMIDI(); });
    expectApproved("midi/devices.approved", paragraph(Split(text, "\n"), " | "));
    devices_.refuse = true;
    lstInDevs = {kPad};
    MidiHandle handle = 0;
    OpenMidiOutDevice(0, handle);
    EXPECT_EQ(handle, 0U);
    EXPECT_EQ(desktop().boxes, (std::vector<std::string>{"OpenMidiOutDevice:  0  : The device is in use."}));
}

TEST(MidiRing, HoldsTwentyNineAndDropsTheClock) {
    ResetRing();
    for (std::uint32_t i = 0; i < 29; ++i) {
        MidiInProc(kMidiData, 0xF8, 0);
        MidiInProc(kMidiData, 0x90 | i << 8, i);
        MidiInProc(961, 1, 1);  // a device that opens
    }
    EXPECT_EQ(MidiInBacklog(), 29);
    EXPECT_EQ(MidiInQueue[28].first, 0x90U | 28 << 8);
    MidiInProc(kMidiLongData, 0, 0);
    EXPECT_EQ(MidiInBacklog(), 0);  // the thirtieth unread entry: the ring looks empty
    ResetRing();
    MidiInProc(kMidiData, 0xFE, 7);
    EXPECT_EQ(MidiInQueue[0].second, 7U);
}

std::vector<std::uint32_t> taken;

TEST(MidiQueue, KeepsOrderBetweenThreadsAndCountsWhatItCannotHold) {
    constexpr std::uint32_t kMessages = 20'000;
    MidiQueue queue(31);
    taken.clear();
    const auto take = [](std::uint32_t, std::uint32_t message, std::uint32_t) { taken.push_back(message); };
    std::thread driver([&] {
        for (std::uint32_t i = 0; i < kMessages; ++i) {
            const unsigned char bytes[] = {0x90, static_cast<unsigned char>(i & 0x7F),
                                           static_cast<unsigned char>(i >> 7 & 0x7F)};
            while (!queue.push(bytes, i)) std::this_thread::yield();
        }
    });
    while (taken.size() < kMessages) queue.deliver(take, 29);
    driver.join();
    for (std::uint32_t i = 0; i < kMessages; ++i)
        ASSERT_EQ(taken[i], 0x90U | (i & 0x7F) << 8 | (i >> 7 & 0x7F) << 16);
    const std::uint64_t before = midiMessagesDropped();
    const unsigned char note[] = {0x90, 1, 1}, clock[] = {0xF8}, exclusive[] = {0xF0, 1, 0xF7};
    for (int i = 0; i < kMidiWaiting; ++i) EXPECT_TRUE(queue.push(note, 0));
    EXPECT_TRUE(queue.push(clock, 0));
    EXPECT_FALSE(queue.push(note, 0));
    EXPECT_EQ(midiMessagesDropped(), before + 1);
    taken.clear();
    EXPECT_EQ(queue.deliver(take, 2 * kMidiWaiting), kMidiWaiting);
    for (int i = 0; i < 40; ++i) queue.push(exclusive, 0);
    EXPECT_EQ(queue.deliver(take, 100), 31);  // long messages end, short ones go on
    EXPECT_TRUE(queue.push(note, 0));
    EXPECT_EQ(queue.deliver(take, 100), 1);
}

}  // namespace
}  // namespace zv::test
