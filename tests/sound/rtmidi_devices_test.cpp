// MIDI devices through RtMidi: their names, and real ports on a JACK server of the test's own.
#include <RtMidi.h>
#include <jack/jack.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <latch>
#include <mutex>
#include <thread>

#include "platform/common/jack_turn.h"
#include "platform/jack/jack_devices.h"
#include "platform/jack/jack_stream.h"
#include "platform/midi.h"
#include "platform/rtmidi/device_names.h"
#include "platform/rtmidi/port_check.h"
#include "platform/wake.h"
#include "tests/sound/sound_server.h"

namespace zv {
namespace {
std::atomic<int> wakes{0};
}
void wakeInterface() noexcept { ++wakes; }
}  // namespace zv

namespace zv::test {
namespace {

TEST(MidiNames, AreTheSameAfterEachStartOfTheSystem) {
    const struct {
        const char *port, *name;
    } rows[] = {
        {"nanoPAD2:nanoPAD2 nanoPAD2 _ PAD 20:0", "nanoPAD2 nanoPAD2 _ PAD"},
        {"Launchpad Mini:Launchpad Mini MIDI 1 128:1", "Launchpad Mini MIDI 1"},
        {"APC40 mkII:APC40 mkII 24:0", "APC40 mkII"},
        {"Midi Through:Midi Through Port-0 14:0", "Midi Through Port-0"},
        {"VirMIDI 2-0:VirMIDI 2-0 28:0", "VirMIDI 2-0"},
        {"a2j:Launchpad [24] (capture): Launchpad MIDI 1", "a2j:Launchpad: Launchpad MIDI 1"},
        {"a2j:Launchpad [31] (playback): Launchpad MIDI 1", "a2j:Launchpad: Launchpad MIDI 1"},
        {"system:midi_capture_2", "system:midi_2"},
        {"system:midi_playback_2", "system:midi_2"},
        {"surface:pads_out", "surface:pads"},
        {"surface:pads_in", "surface:pads"},
        {"Boutin:Boutin MIDI 1 20:0", "Boutin MIDI 1"},
    };
    for (const auto& row : rows) EXPECT_EQ(cleanMidiName(row.port), row.name);
    EXPECT_EQ(distinctMidiNames({"Pad:Pad 20:0", "Key:Key 24:0", "Pad:Pad 28:0", "Pad:Pad 32:0"}),
              (std::vector<std::string>{"Pad", "Key", "Pad (2)", "Pad (3)"}));
}

std::vector<std::uint32_t> received, kinds;
void note(std::uint32_t code, std::uint32_t first, std::uint32_t) {
    kinds.push_back(code);
    received.push_back(first);
}

/// A surface of this program's own: what it sends is heard, what it is sent arrives, and that it goes is told.
void playSurface(RtMidi::Api api) {
    received.clear();
    kinds.clear();
    std::mutex guard;
    std::vector<std::vector<unsigned char>> arrived;
    auto source = std::make_unique<RtMidiOut>(api, "Pad Source");
    source->openVirtualPort("pad");
    RtMidiIn sink(api, "Pad Sink");
    struct Arrivals {
        std::mutex& guard;
        std::vector<std::vector<unsigned char>>& messages;
    } arrivals{guard, arrived};
    sink.setCallback(
        [](double, std::vector<unsigned char>* bytes, void* user) {
            auto& to = *static_cast<Arrivals*>(user);
            const std::lock_guard lock(to.guard);
            to.messages.push_back(*bytes);
        },
        &arrivals);
    sink.openVirtualPort("pad");
    const auto named = [](const std::vector<std::string>& names, const char* client) {
        const auto found =
            std::ranges::find_if(names, [client](const std::string& n) { return n.starts_with(client); });
        return static_cast<int>(found - names.begin());
    };

    std::string error;
    EXPECT_EQ(0U, openMidiInput(99, note, 31, error));
    EXPECT_FALSE(error.empty());
    const MidiHandle input = openMidiInput(named(midiInputs(), "Pad Source"), note, 1, error);
    ASSERT_NE(0U, input) << error;
    ASSERT_TRUE(startMidiInput(input));
    const auto send = [&](std::vector<unsigned char> bytes) { source->sendMessage(&bytes); };
    send({0x90, 0x3C, 0x7F});
    send({0xF8});
    send({0xC1, 0x05});
    send({0xF0, 0x01, 0x02, 0xF7});
    send({0xF0, 0x01, 0x03, 0xF7});
    send({0x80, 0x3C, 0x40});
    ASSERT_TRUE(within(4, [&] {
        deliverMidi(input, kMidiWaiting);
        return received.size() >= 4;
    }));
    EXPECT_GT(wakes.load(), 0);
    EXPECT_EQ(received, (std::vector<std::uint32_t>{0x7F3C90, 0x05C1, 0, 0x403C80}));
    EXPECT_EQ(kinds, (std::vector<std::uint32_t>{kMidiData, kMidiData, kMidiLongData, kMidiData}));

    const MidiHandle output = openMidiOutput(named(midiOutputs(), "Pad Sink"), error);
    ASSERT_NE(0U, output) << error;
    EXPECT_TRUE(sendMidi(output, 0x7F2490));
    EXPECT_TRUE(sendMidi(output, 0x03C5));
    EXPECT_TRUE(within(4, [&] {
        const std::lock_guard lock(guard);
        return arrived.size() == 2;
    }));
    EXPECT_EQ(arrived, (std::vector<std::vector<unsigned char>>{{0x90, 0x24, 0x7F}, {0xC5, 0x03}}));
    EXPECT_FALSE(sendMidi(output + 1, 0x7F2490));

    EXPECT_TRUE(midiConnected(input));
    EXPECT_TRUE(midiConnected(output));
    sink.closePort();
    EXPECT_FALSE(midiConnected(output));

    // The program's own ports are no devices; what vanishes is gone from the next list.
    for (const std::string& device : midiInputs()) EXPECT_FALSE(device.starts_with("Zentrova")) << device;
    midiDevicesChanged();
    wakes = 0;
    source.reset();
    EXPECT_TRUE(within(4, [] { return midiDevicesChanged(); }));
    EXPECT_GT(wakes.load(), 0);
    EXPECT_FALSE(midiConnected(input));
    const auto left = midiInputs();
    EXPECT_EQ(static_cast<int>(left.size()), named(left, "Pad Source"));
    closeMidiInput(input);
    closeMidiOutput(output);
}

TEST(RtMidiDevices, MessagesOfAJackServersPorts) {
    if (access("/dev/snd/seq", R_OK) == 0)
        GTEST_SKIP() << "left out: this machine's ALSA sequencer is chosen before JACK";
    const Folder folder;
    const Process jack = startJack(folder, 44'100, 256);
    ASSERT_TRUE(within(8, [] { return !makeJackDevices()->outputs().empty(); }));
    // Another thread hangs in opening a client: none is opened beside it.
    jack_client_t* looker = openJackClient("looker");
    ASSERT_NE(looker, nullptr);
    const auto there = [&](const char* client) {
        char* uuid = jack_get_uuid_for_client_name(looker, client);
        jack_free(uuid);
        return uuid != nullptr;
    };
    std::latch held(1), over(1);
    std::jthread other([&] {
        const auto turn = jackTurn();
        held.count_down();
        over.wait();
    });
    held.wait();
    EXPECT_TRUE(midiInputs().empty());
    watchJackPorts("Zentrova");
    EXPECT_FALSE(there("Zentrova"));
    EXPECT_FALSE(there("Zentrova-check"));
    over.count_down();
    midiInputs();
    EXPECT_TRUE(there("Zentrova"));
    EXPECT_TRUE(there("Zentrova-check"));
    closeJackClient(looker);
    playSurface(RtMidi::UNIX_JACK);
}

TEST(RtMidiDevices, MessagesOfTheAlsaSequencer) {
    if (access("/dev/snd/seq", R_OK | W_OK) != 0)
        GTEST_SKIP() << "left out: this machine has no ALSA sequencer";
    playSurface(RtMidi::LINUX_ALSA);
}

}  // namespace
}  // namespace zv::test
