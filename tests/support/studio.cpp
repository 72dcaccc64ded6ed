#include "tests/support/studio.h"

#include <unistd.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "audio/devices.h"
#include "audio/upcalls.h"
#include "model/jingle.h"
#include "model/state.h"
#include "model/upcalls.h"
#include "platform/clock.h"
#include "platform/decoders.h"
#include "platform/file_decoders/file_decoders.h"
#include "platform/paths.h"
#include "platform/rehearsal/virtual_clock.h"
#include "startup/errors.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/folders_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings_file.h"
#include "startup/stores.h"
#include "startup/upcalls.h"
#include "tests/support/desktop.h"

namespace zv::test {
namespace {

/// All that lives for the whole run of the program, as it is before its start.
void beginRun() {
    ResetSettings();
    startupUpcalls = {};
    modelUpcalls = {};
    audioUpcalls = {};
    ErrCount = 0;
    ErrorLogOn = false;
    for (JingleRecord& jingle : J) jingle = {};
    JExists.fill(1);
    JReverbFx.fill(0);
    JVolFx.fill(0);
    JEqFx.fill(0);
    LastPalIdx = gridSettings.JinglesRows * gridSettings.JinglesCols - 1;
    PalToSave = SelectorsOn = MIDILearnActive = ClockShown = FxOpen = false;
    CtrlDown = ShiftDown = AltDown = false;
    SaveMode.clear();
    LastCtrl.clear();
    ToggleAutoRep = ToggleTouch = 0;
    DispRemain = 0;
    DispLoopIdx = 0;
    LastPlayedJ = -1;
    desktop() = {};
}

}  // namespace

std::string paletteLines(const std::string& keys, int number) {
    std::string lines;
    std::istringstream words(keys);
    for (std::string word; words >> word;) {
        const std::string stem = word.substr(0, word.find('='));
        std::string value = word.substr(stem.size() + 1);
        if (stem == "CueStart" || stem == "StopPos" || stem == "LoopIn" || stem == "LoopOut")
            value = std::to_string(static_cast<int>(kRate) * std::stoi(value) / 1000 * kBytesPerFrame);
        lines += stem + "_" + std::to_string(number) + "=" + value + "\r\n";
    }
    return lines;
}

FolderGuard::FolderGuard() {
    std::string name = (std::filesystem::temp_directory_path() / "zv-test-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the test");
    path = name;
}

FolderGuard::~FolderGuard() {
    std::error_code error;
    std::filesystem::remove_all(path, error);
}

FolderTest::FolderTest() {
    const std::string name = folder.string();
    beginRun();
    setProgramFolder(name);
    setShippedFolder(name + "/shipped");
    SetStorePaths();
    folderSettings.SampleDir = name + "/Audio_Sample";
    startupUpcalls.showErrorMark = [this](const ErrorMark& mark) {
        marks.push_back(mark.mode + (mark.toolTip.empty() ? "" : ": " + mark.toolTip));
    };
    startupUpcalls.showReportWindow = [this](const std::string& title, const std::string&) {
        reports.push_back(title);
    };
}

FolderTest::~FolderTest() { beginRun(); }

void FolderTest::write(const std::string& name, const std::string& bytes) const {
    std::filesystem::create_directories(path(name).parent_path());
    std::error_code none;
    std::filesystem::remove(path(name), none);  // what is linked to it stays
    std::ofstream(path(name), std::ios::binary) << bytes;
}

std::string FolderTest::read(const std::string& name) const {
    std::ifstream in(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Of the test that runs; for platform/sound.h.
std::shared_ptr<OfflineDevices> studioDevices;

StudioTest::StudioTest(OfflineOptions given) : options(std::move(given)) {
    devices = makeOfflineDevices(options);
    soundDecoders = makeFileDecoders();
    engine::engineControl()->install({soundDecoders, devices});
    VirtualClock::instance().alignToPeriod();
    studioDevices = devices;
    VirtualClock::instance().drive(devices);
    VirtualClock::instance().onPeriod([] { engine::engineControl()->settleSyncs(); });
    ListOutDev();
    deviceSettings.DeviceSingle == 1 ? bassini(0) : SetupMixers();
}

StudioTest::~StudioTest() {
    for (JingleRecord& jingle : J) BASS_StreamFree(jingle.hPlay);
    FreeBASS();
    VirtualClock::instance().drive(nullptr);
    VirtualClock::instance().onPeriod({});
    constexpr int kForgotten = 10'000;  // ms: peaks, messages and marks that are held for a while
    pass(kForgotten);
}

void StudioTest::pass(int ms) { VirtualClock::instance().advanceTo(monotonicMs() + ms); }

void StudioTest::perform(const std::string& acts, const std::function<void(const std::string&)>& act) {
    const std::int64_t begin = monotonicMs();
    std::istringstream words(acts);
    for (std::string word; words >> word;) {
        if (word.find_first_not_of("0123456789") == std::string::npos)
            VirtualClock::instance().advanceTo(begin + std::stoi(word));
        else
            act(word);
    }
}

Heard StudioTest::heard(int output) {
    return {devices->takeSound(options.outputs.at(static_cast<std::size_t>(output)))};
}

}  // namespace zv::test

namespace zv {

bool soundOutputsThere() { return test::studioDevices != nullptr && !test::studioDevices->outputs().empty(); }

}  // namespace zv

namespace zv::engine {

/// Here the library is linked, not loaded.
const EngineControl* audioLibraryControl() { return engineControl(); }

}  // namespace zv::engine
