#include "tests/midi/surface.h"

#include <sstream>

#include "midi/learn.h"
#include "midi/lifecycle.h"
#include "midi/ring.h"
#include "startup/settings/midi_settings.h"

namespace zv::test {

SurfaceTest::SurfaceTest() {
    midiIn = {};
    midiOut = {};
    MIDILearn = {};
    JMidiState.fill({});
    hMidiIn = hMidiOut = hMidiOutFixed = 0;
    MIDIDeviceLabel = MIDIOutFixedDeviceLabel = MIDIStatusText = {};
    MIDIInOpen = MIDIDevicePicked = MIDIHidden = MIDILearnActive = false;
    MIDIOutIndex = kNoMidiIndex;
    lstInDevs = lstOutDevs = {};
    cmbInDevsGUI = cmbMIDIOutFixedDevsGUI = cmbMIDIpresets = {};
    MIDIStore.SetSection("");
    ResetRing();
    devices_ = {};
    devices_.onSent = [this](const std::string& device, std::uint32_t message) {
        sent_.push_back((device == kFixed ? "f" : "") + midiText(message));
    };
    write("MIDI.ini", "");
}

SurfaceTest::~SurfaceTest() {
    EndMIDI();
    devices_ = {};
}

void SurfaceTest::start(const std::vector<std::string>& lines) {
    std::string text = "[Pad]\r\n";
    for (const std::string& line : lines) text += line + "\r\n";
    write("MIDI.ini", text);
    devices_.plug(kPad);
    devices_.plug(kFixed, {false, true});
    midiSettings.MIDIDevice = kPad;
    midiSettings.MIDIOutFixedDevice = kFixed;
    midiSettings.MIDIOutFixedEnabled = 1;
    StartMIDI();
    AllowMIDIFeedback();
    sent_.clear();
}

void SurfaceTest::send(const std::string& messages) {
    std::istringstream words(messages);
    for (std::string message; words >> message;) EXPECT_TRUE(devices_.hear(message)) << message;
}

std::string SurfaceTest::sent() {
    std::string all;
    for (const std::string& message : sent_) all += (all.empty() ? "" : " ") + message;
    sent_.clear();
    return all;
}

std::string SurfaceTest::section(const std::string& name) const {
    std::string all;
    for (const auto& [key, value] : MIDIStore.GetSectionLines(name))
        all += (all.empty() ? "" : "; ") + key + "=" + value;
    return all;
}

}  // namespace zv::test
