#include "tests/ui/window_test.h"

#include <map>
#include <sstream>
#include <tuple>

#include "app/rehearsed_screen.h"
#include "audio/streams.h"
#include "platform/timers.h"
#include "startup/language.h"
#include "startup/settings/program_settings.h"
#include "startup/upcalls.h"
#include "tests/support/places.h"
#include "ui/edit/carried.h"
#include "ui/edit/colour_picker.h"
#include "ui/edit/jingle_editor.h"
#include "ui/edit/remove.h"
#include "ui/edit/save_dialogue.h"
#include "ui/edit/selection.h"
#include "ui/records/timers.h"
#include "ui/screen/error_mark.h"
#include "ui/screen/layout.h"
#include "ui/settings/mixer_controls.h"
#include "ui/upcalls_fill.h"
#include "ui/windows/announcer_window.h"
#include "ui/windows/console_window.h"
#include "ui/windows/history_window.h"
#include "ui/windows/jingle_window.h"
#include "ui/windows/level_window.h"
#include "ui/windows/midi_button_window.h"
#include "ui/windows/midi_settings_window.h"
#include "ui/windows/midi_small_windows.h"
#include "ui/windows/playlist_windows.h"
#include "ui/windows/question_window.h"
#include "ui/windows/rename_window.h"
#include "ui/windows/report_window.h"
#include "ui/windows/search_window.h"
#include "ui/windows/select_file_window.h"
#include "ui/windows/shortcuts_window.h"
#include "ui/wiring.h"

namespace zv::test {

namespace {

constexpr int kFramesPerMs = static_cast<int>(kRate) / 1000;

/// What one test may leave in a record for the next.
constexpr std::tuple kKept{
    &Control::visible, &Control::enabled,   &Control::left,      &Control::top,     &Control::width,
    &Control::height,  &Control::backColor, &Control::foreColor, &Control::caption, &Control::borderColor,
    &Control::toolTip, &Control::value,     &Control::minimum,   &Control::maximum, &Control::listIndex,
    &Control::items,   &Control::alignment, &Control::topRow,    &Control::drawing};

auto valuesOf(const Control& c) {
    return std::apply([&](auto... member) { return std::tuple((c.*member)()...); }, kKept);
}

/// Every window is made and stands as it was made.
void beginWindows() {
    static const auto first = [] {
        frmMain(), frmFX(), frmMixer(), frmConsole(), frmSettAnnouncer(), frmLoudness(), frmMIDIScroll(),
            frmMIDIFader(), frmMIDIReset(), frmMIDIButton(), frmMIDISettings(), frmQuestion(), frmHistory(),
            frmPlaylist(), frmPlaylistSelector(), frmRenameFile(), frmReportError(), frmSearchJing(),
            frmSelFile(), frmShortcuts();
        std::map<Control*, decltype(valuesOf(frmMain().window))> all;
        for (Control* c : allControls()) all.emplace(c, valuesOf(*c));
        return all;
    }();
    CloseForms();
    for (const auto& kept : first)
        std::apply(
            [&c = *kept.first, &values = kept.second](auto... member) {
                std::apply([&](const auto&... value) { ((c.*member = value), ...); }, values);
            },
            kKept);
    for (int i = 0; i < kJingles; ++i)
        if (JingleButton* b = Button(i)) b->JremBG.visible = false, b->JRemLev.visible = false;
    HideErrMark();
    FillConsoleUpcalls();
    startupUpcalls.consoleLines({}, true);
    startupUpcalls.consoleLines = {}, startupUpcalls.consolePaused = {};
    MoveMode.clear(), MoveSourcePalette.clear(), MoveBuffer = {};
}

}  // namespace

std::string runningTimers() {
    std::string running;
    std::istringstream names(
        "SaveTimer TimerLoadPal TimerPgUpDnPalLst Timerlstpalbot Timerlstpaltop TimerTrigColSel "
        "TimerCloseColorPicker "
        "TimerFindJingles TimerSearch TimerAutoClJSearch TimerClear TimerShutDown TimerFadOutLive TimerLive "
        "TimerPos TimerFX "
        "TimerBlink TimerBlinkLearn TimerFlashLearn Timer1 TimerSoon TimerDispMessage TimerTOrelease "
        "tmrResize");
    for (std::string name; names >> name;)
        if (const Timer* timer = findTimer(name); timer != nullptr && timer->enabled())
            running += (running.empty() ? "" : " ") + name;
    return running;
}

WindowTest::WindowTest() {
    std::filesystem::copy_file(test::sourceDir() + "/data/language_original.ini", path("language.ini"));
    programSettings.Language = kEnglish;
    programSettings.ConfirmExit = 0;
    LoadingUI = false;
    Unloading = false;
    MoveSrcJ = RenameJ = -1;
    ClipPath.clear();
    OptionCode.clear();
    OptionControl.clear();
    LoopToggleStep = 0;
    JExists.fill(0);
    beginWindows();
    FillUpcalls();
    Form_Load();
    FormsLoad("frmMain");
    LnStrings("frmMain");
    NotSavePal();
    HideSelectors();
    for (int i = 0; i < kJingles; ++i) {
        ClearButton(i);
    }
    PalToSave = false;
    resize(1280, 800);
    StartTimers();
    UiTimer& tick = timers().TimerDispAndJButtons;
    tick.handler = [this, handler = tick.handler] {
        handler();
        EXPECT_EQ(ticksChecked ? screenFault() : "", "") << monotonicMs();
    };
}

WindowTest::~WindowTest() {
    OKfx();
    StopTimers();
    for (int i = 0; i < kJingles; ++i) {
        ClearButton(i);
    }
}

void WindowTest::resize(int widthPixels, int heightPixels) {
    frmMain().window.width = widthPixels * kTwipsPerPixel;
    frmMain().window.height = heightPixels * kTwipsPerPixel;
    FormDraw("init");
}

void WindowTest::load(int index, int ms, const std::string& keys) {
    load(index, sine(static_cast<std::size_t>(ms * kFramesPerMs), 1000), keys);
}

void WindowTest::load(int index, const std::vector<std::int16_t>& samples, const std::string& keys) {
    const bool hot = index >= kPaletteSlots;
    const int number = hot ? index - kPaletteSlots : index;
    const std::string name = "sound_" + std::to_string(index) + ".wav";
    writeWav(path("Audio_Sample/" + name), samples);
    const char* file = hot ? "HotJingles.ini" : "palette.ini";
    const std::string before = read(file);
    write(file, std::string(hot ? "[HotJingles]" : "[Test]") + "\r\n" +
                    paletteLines("Path=Audio_Sample\\" + name + " " + keys, number));
    openNames(index, hot ? kHotSection : "Test", hot);
    openStreams(index);
    write(file, before);
}

void WindowTest::writePalette(const std::string& name, int slots) {
    writeWav(path("Audio_Sample/short.wav"), sine(4410, 440));
    std::string bytes = read("palette.ini") + "[" + name + "]\r\n";
    for (int i = 0; i < slots; ++i) {
        bytes += "Path_" + std::to_string(i) + "=Audio_Sample\\short.wav\r\n";
    }
    write("palette.ini", bytes);
}

void WindowTest::press(int index) { button(index).onMouseDown({}); }
void WindowTest::release(int index) { button(index).onMouseUp({}); }

}  // namespace zv::test
