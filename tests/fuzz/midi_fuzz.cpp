// Any bytes as MIDI.ini, any messages of a surface, any OK of a learn window behind them: nothing crashes, and what is
// written reads back and is written the same.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>

#include "midi/assignments.h"
#include "midi/devices.h"
#include "midi/dispatch.h"
#include "midi/learn.h"
#include "midi/learn_commands.h"
#include "midi/state.h"
#include "model/actions.h"
#include "model/state.h"
#include "platform/paths.h"
#include "platform/rehearsal/midi_devices.h"
#include "startup/settings/midi_settings.h"
#include "startup/stores.h"

namespace {

using namespace zv;

constexpr std::size_t kMostMessages = 200;

void require(bool holds) {
    if (!holds) std::abort();
}

std::string fileText() {
    std::ifstream file(MIDIFile, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void begin() {
    static const bool once = [] {
        const std::filesystem::path folder = std::filesystem::temp_directory_path() / "midi_fuzz";
        std::filesystem::create_directories(folder);
        setProgramFolder(folder.string());
        SetStorePaths();
        MidiDevices::instance().plug("Pad");
        midiSettings.MIDIDevice = "Pad";
        return true;
    }();
    (void)once;
    midiIn = {};
    midiOut = {};
    cmbInDevsGUI = {};
    CloseMidiInDevice();
    SetMIDIDevice();
}

/// What is written twice is the same.
void writeAndReadBack() {
    CloseFileMIDI("Pad");
    CloseFileMIDIOut("");
    LoadMIDIdatas("Pad");
    CloseFileMIDI("Pad");
    CloseFileMIDIOut("");
    const std::string once = fileText();
    LoadMIDIdatas("Pad");
    CloseFileMIDI("Pad");
    CloseFileMIDIOut("");
    require(fileText() == once);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3) return 0;
    std::span<const std::uint8_t> rest(data + 3, size - 3);
    const std::size_t messages =
        std::min<std::size_t>({data[0] * 3U, rest.size() / 3 * 3, kMostMessages * 3});
    static const char* const kControls[] = {"b_Jingle",       "btUp",      "lstPal", "Vol",
                                            "btMIDIOutReset", "ckAutoMix", "",       ""};
    const std::span<const std::uint8_t> sent = rest.first(messages);
    const std::string text(reinterpret_cast<const char*>(rest.data() + messages), rest.size() - messages);
    begin();
    std::ofstream(MIDIFile, std::ios::binary | std::ios::trunc) << "[Pad]\r\n" << text;
    perform = [&](Action, int argument, int) { return argument % 2 == 0; };
    LoadMIDIdatas("Pad");
    const bool learning = OpenLearn(kControls[data[1] % std::size(kControls)], data[2] % 130);
    MidiDevices& devices = MidiDevices::instance();
    for (std::size_t i = 0; i + 2 < sent.size(); i += 3) {
        devices.openInputs.rbegin()->second->queue.push(sent.subspan(i, 3), 0);
        if (sent[i + 2] % 4 == 0) TimerMIDI_Timer();
    }
    TimerMIDI_Timer();
    if (learning) LearnOK();
    require(!MIDILearnActive);
    writeAndReadBack();
    return 0;
}
