// Devices come, go and are found again; what waits in the ring; the lamps after a cable was pulled.

#include <thread>

#include "midi/devices.h"
#include "midi/lifecycle.h"
#include "midi/ring.h"
#include "platform/common/midi_queue.h"
#include "startup/settings/midi_settings.h"
#include "tests/midi/surface.h"

namespace zv::test {
namespace {

constexpr int kRescan = 2000;
bool pumping() { return midiTimers().TimerMIDI.enabled(); }

TEST_F(SurfaceTest, ADeviceIsTakenUpByNameWheneverItComes) {
    struct Row {
        const char *plugged, *unplugged;  ///< names; "in:" for the input alone
        const char* label;
        bool open;
        const char* sent;
    };
    const Row rows[] = {
        {"", "", "No MIDI device", false, ""},
        {"Other", "", "The chosen MIDI device is not there", false, ""},
        {"Pad", "", "Pad", true, "B00000 A00600"},
        {"Third", "", "Pad", true, ""},  // the input is opened again, the output stays
        {"", "Pad", "The chosen MIDI device is not there", false, ""},
        {"", "Other", "The chosen MIDI device is not there", false, ""},
        {"Pad", "", "Pad", true, "B00000 A00600"},
        {"", "Third", "Pad", true, "B00000 A00600"},  // the output has another place now
        {"", "Pad", "No MIDI device", false, ""},
        {"in:Pad", "", "Pad", true, ""},  // no output of its name
    };
    write("MIDI.ini", "[Pad]\r\nJingle0=9010,901000,255\r\nOutReset=B00000\r\nOutStopAll=A00601,A00600\r\n");
    midiSettings.MIDIDevice = kPad;
    StartMIDI();
    int number = 0;
    for (const Row& row : rows) {
        const std::string comes = row.plugged, goes = row.unplugged;
        if (comes.starts_with("in:"))
            devices_.plug(comes.substr(3), {true, false});
        else if (!comes.empty())
            devices_.plug(comes);
        if (!goes.empty()) devices_.unplug(goes);
        sent();
        pass(kRescan + 50);
        ++number;
        EXPECT_EQ(frmMain().display.lblMIDIDevice.caption(), row.label) << number;
        EXPECT_EQ(hMidiIn != 0, row.open) << number;
        EXPECT_EQ(pumping(), row.open) << number;
        EXPECT_EQ(MIDIInOpen, row.open) << number;
        EXPECT_EQ(frmMain().display.lblMIDIDevice.visible(), row.open) << number;
        EXPECT_EQ(sent(), row.sent) << number;
        EXPECT_EQ(devices_.hear("901064"), row.open) << number;
    }
    EXPECT_EQ(midiSettings.MIDIDevice, "Pad");
    // A cable pulled and put back at once: the number of devices is the same.
    devices_.plug(kPad);
    pass(kRescan + 50);
    sent();
    devices_.unplug(kPad);
    EXPECT_FALSE(devices_.hear("901064"));
    devices_.plug(kPad);
    pass(kRescan + 50);
    EXPECT_TRUE(devices_.hear("901064"));
    EXPECT_TRUE(sent().starts_with("B00000 A00600"));
}

TEST_F(SurfaceTest, TheLampsAreRightWithinASecondOfACable) {
    constexpr int kSecond = 1000, kTwoPorts = 100;
    write("MIDI.ini", "[Pad]\r\nJingle0=9010,901000,255\r\nOutStopAll=A00601,A00600\r\n");
    midiSettings.MIDIDevice = kPad;
    StartMIDI();
    const struct {
        const char* what;
        int between;  ///< ms from the input to the output
        bool pulled, told;
        int within;
    } rows[] = {
        {"put in", 0, false, true, kSecond},
        {"pulled and put back at once", 0, true, true, kSecond},
        {"its output a little later", kTwoPorts, true, true, kSecond},
        {"its output later than one looked", kRescan / 2, true, true, kRescan / 2 + kSecond},
        {"a system that tells nothing", 0, true, false, kRescan},
        {"the same, its output later than one looked", kRescan, true, false, 2 * kRescan + kSecond},
    };
    for (const auto& row : rows) {
        devices_.tells = row.told;
        if (row.pulled) devices_.unplug(kPad);
        sent();
        devices_.plug(kPad, {true, false});
        pass(row.between);
        devices_.plug(kPad);
        pass(row.within - row.between);
        EXPECT_TRUE(devices_.hear("901064")) << row.what;
        EXPECT_TRUE(sent().starts_with("A00600")) << row.what;
    }
}

TEST_F(SurfaceTest, WithoutAnInputNothingRunsEveryTenMs) {
    midiSettings.MIDIDevice = kPad;
    StartMIDI();
    pass(3 * kRescan);
    EXPECT_FALSE(pumping());
    EXPECT_TRUE(midiTimers().TimerMIDIDevices.enabled());
    devices_.refuse = true;
    devices_.plug(kPad);
    pass(kRescan);
    EXPECT_FALSE(pumping());
    EXPECT_TRUE(desktop().boxes.empty());  // an input that is in use is told by the label alone
    midiSettings.MIDIEnabled = 0;
}

TEST_F(SurfaceTest, TheSurfaceGoesDarkAtTheEnd) {
    start({"OutReset=B00000"});
    sent();
    EndMIDI();
    EXPECT_EQ(sent(), "B00000");
    EXPECT_TRUE(devices_.openInputs.empty());
    EXPECT_TRUE(devices_.openOutputs.empty());
    pass(3 * kRescan);
    EXPECT_TRUE(devices_.openInputs.empty());
}

TEST_F(SurfaceTest, PickingInTheSettings) {
    start({"OutReset=B00000", "Jingle0=9010,901000,255"});
    devices_.plug("Second");
    pass(kRescan + 50);
    const auto row = [](const ShownList& list, const char* name) {
        ShownList copy = list;
        copy.select(name);
        return copy.selected;
    };
    // The fixed output may not be the surface itself.
    cmbMIDIOutFixedDevsGUI_Click(row(cmbMIDIOutFixedDevsGUI, kPad));
    ASSERT_EQ(desktop().boxes.size(), 1U);
    EXPECT_EQ(cmbMIDIOutFixedDevsGUI.selected, 0);
    EXPECT_EQ(midiSettings.MIDIOutFixedDevice, kFixed);
    cmbMIDIOutFixedDevsGUI_Click(row(cmbMIDIOutFixedDevsGUI, kFixed));
    sent();
    cmbInDevsGUI_Click(row(cmbInDevsGUI, "Second"));
    EXPECT_EQ(midiSettings.MIDIDevice, "Second");
    EXPECT_EQ(devices_.openInputs.begin()->second->device, "Second");
    EXPECT_EQ(devices_.openOutputs.at(hMidiOut), "Second");
    EXPECT_TRUE(sent().starts_with("B00000"));  // the one that is left goes dark
    // No device: everything rests until another is picked; the same output is opened again.
    cmbInDevsGUI_Click(0);
    EXPECT_TRUE(midiSettings.MIDIDevice.empty());
    EXPECT_EQ(hMidiIn, 0U);
    EXPECT_FALSE(pumping());
    cmbInDevsGUI_Click(row(cmbInDevsGUI, "Second"));
    EXPECT_NE(hMidiIn, 0U);
    EXPECT_NE(hMidiOut, 0U);
    ckMIDIEnable_Click(MidiSwitch::input, false);
    EXPECT_EQ(hMidiIn, 0U);
    EXPECT_FALSE(pumping());
    EXPECT_EQ(midiSettings.MIDIEnabled, 0);
    ckMIDIEnable_Click(MidiSwitch::input, true);
    EXPECT_NE(hMidiIn, 0U);
    EXPECT_TRUE(pumping());
    // A velocity below 16 makes texts of five characters: the fixed output is silent.
    sent();
    MIDIOutFixed(FixedNote::stop, true);
    EXPECT_EQ(sent(), "f907F7F");
    cmbMIDIOutFixedChan_Click(16);
    txtMIDIOutVel_Change(16);
    MIDIOutFixed(FixedNote::stop, false);
    EXPECT_EQ(sent(), "f8F7F10");
    txtMIDIOutVel_Change(15);
    MIDIOutFixed(FixedNote::stop, true);
    EXPECT_EQ(sent(), "");
}

TEST_F(SurfaceTest, AnOutputThatCannotBeOpenedIsTold) {
    devices_.plug(kPad);
    midiSettings.MIDIDevice = kPad;
    lstInDevs = {kPad};
    devices_.refuse = true;
    MidiHandle handle = 0;
    OpenMidiOutDevice(0, handle);
    EXPECT_EQ(handle, 0U);
    ASSERT_EQ(desktop().boxes.size(), 1U);
    EXPECT_EQ(desktop().boxes[0], "OpenMidiOutDevice:  0  : The device is in use.");
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
