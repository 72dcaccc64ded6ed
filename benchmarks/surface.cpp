// A control surface whose 120 pads are all assigned and lit: what a message costs that nothing answers to, the whole
// burst of a surface that sends all its faders, and painting all lamps anew.
#include <string>
#include <vector>

#include "benchmarks/measure.h"
#include "benchmarks/program.h"
#include "midi/assignments.h"
#include "midi/codes.h"
#include "midi/devices.h"
#include "midi/dispatch.h"
#include "midi/feedback.h"
#include "midi/state.h"
#include "model/actions.h"
#include "model/jingle.h"
#include "platform/paths.h"
#include "platform/rehearsal/midi_devices.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/midi_settings.h"
#include "startup/stores.h"

namespace zv::bench {
namespace {

constexpr int kBurst = 128, kBursts = 200, kRefreshes = 100;
constexpr double kMs = 1000, kUs = 1e6;

void writeSurface(const Home& home) {
    auto file = home.file("MIDI.ini");
    file << "[Pad]\r\nMainVolume=B07F,0\r\n";
    for (int i = 0; i < kJingles; ++i) {
        const std::string note = HexByte(i);
        file << "Jingle" << i << "=90" << note << ",80" << note << "40,255\r\n"
             << "OutJingle" << i << "=A0" << note << "01,A0" << note << "02,A0" << note << "03,A0" << note
             << "04\r\n";
    }
}

/// The middle time of a burst of that message, from the driver's queue until all are done, s.
double burst(const std::string& message) {
    std::vector<double> seconds;
    for (int i = 0; i < kBursts; ++i) {
        for (int k = 0; k < kBurst; ++k) MidiDevices::instance().queue(message);
        const double began = wallSeconds();
        TimerMIDI_Timer();
        seconds.push_back(wallSeconds() - began);
    }
    return median(seconds);
}

void surface() {
    const Home home("surface");
    writeSurface(home);
    setProgramFolder(home.path(""));
    SetStorePaths();
    gridSettings.JinglesCols = 12;
    LastPalIdx = kPaletteSlots - 1;
    midiSettings.MIDIDevice = "Pad";
    midiSettings.MIDIEnabled = 1;
    zv::perform = [](Action, int, int) { return true; };
    MidiDevices& devices = MidiDevices::instance();
    std::uint64_t sent = 0;
    devices.onSent = [&](const std::string&, std::uint32_t) { ++sent; };
    devices.plug("Pad");
    SetMIDIDevice();
    if (hMidiIn == 0 || !HasMIDIAssignment(kJingles - 1)) {
        missing("midi", "the surface was not opened");
        return;
    }
    atMost("midi-message-nothing-answers", burst("F17F7F") * kUs / kBurst, "us", 10);
    atMost("midi-burst-128-faders", burst("B07F40") * kMs, "ms", 5);
    sent = 0;
    const double began = wallSeconds();
    for (int i = 0; i < kRefreshes; ++i) MIDIOutRefresh(-1);
    atMost("midi-refresh-120-lamps", (wallSeconds() - began) * kMs / kRefreshes, "ms", 1);
    tell("midi-refresh-messages", static_cast<double>(sent) / kRefreshes, "messages");
    CloseMidiInDevice();
    CloseMidiOutDevice(hMidiOut);
    devices.unplug("Pad");
    devices.onSent = nullptr;
    zv::perform = nullptr;
}

const Known knows("midi", surface);

}  // namespace
}  // namespace zv::bench
