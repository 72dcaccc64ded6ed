#include "app/start.h"

#include <string>
#include <string_view>
#include <utility>

#include "audio/devices.h"
#include "audio/open_palette.h"
#include "audio/url_list.h"
#include "engine/bass.h"
#include "engine/ports.h"
#include "midi/lifecycle.h"
#include "model/palette_files.h"
#include "model/palette_lines.h"
#include "model/playlists.h"
#include "model/state.h"
#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/jobs.h"
#include "platform/paths.h"
#include "platform/sound.h"
#include "startup/datafiles.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/instance_lock.h"
#include "startup/language.h"
#include "startup/settings/announcer_settings.h"
#include "startup/settings/clock_settings.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/palette_list_settings.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/program_settings.h"
#include "startup/settings/volumes_settings.h"
#include "startup/settings/window_settings.h"
#include "startup/settings_file.h"
#include "startup/stores.h"
#include "startup/trace.h"
#include "startup/upcalls.h"
#include "ui/edit/palette_list.h"
#include "ui/records/main_window.h"
#include "ui/screen/clock.h"
#include "ui/screen/layout.h"
#include "ui/upcalls_fill.h"
#include "ui/windows/splash.h"
#include "ui/wiring.h"

namespace zv {
namespace {

constexpr const char* kTitle = "Zentrova";
constexpr const char* kLogSeparator = "---8<-------8<-------8<-------8<-------8<-------8<-------8<---";
constexpr DWORD kWantedBass = 516;  // high word of the version: 2.4

InstanceLock instanceLock;

/// One step of the start: guarded, traced under `name` unless that is empty, events pumped behind it.
template <class Body>
void step(std::string_view name, Body&& body) {
    guarded("modMain.Main", std::forward<Body>(body));
    if (!name.empty()) FillTraceLog(name);
    processEvents();
}

/// The one fatal condition of the start.
bool refuse(const std::string& logged, const std::string& shown) {
    UnloadSplash();
    ErrLog(audioLibraryName(), logged);
    messageBox(shown, kTitle, BoxKind::stop, BoxButtons::ok);
    return false;
}

bool loadEngine() {
    const std::string library = audioLibraryName();
    const std::string path = shippedFolder() + "/" + library;
    if (!FileExists(path))
        return refuse(" " + library + " does not exist!", "The file " + library + " does not exist!");
    const bool loaded = loadAudioLibrary(path);
    if (!loaded || (BASS_GetVersion() >> 16) != kWantedBass) {
        const std::string text = " BASS version 2.4 was not loaded";
        return refuse(text, text.substr(1));
    }
    const DWORD version = BASS_GetVersion();
    ConsoleAdd("Bass : " + std::to_string(version >> 24) + "." + std::to_string(version >> 16 & 0xFF) + "." +
               std::to_string(version >> 8 & 0xFF) + "." + std::to_string(version & 0xFF));
    FreeBASS();
    return true;
}

/// A second program on the same folder would write over the first one's files: the presenter decides, before
/// anything of it is written. The files are there, the first one has made them.
bool secondProgramAllowed() {
    if (instanceLock.acquire(programFolder()) != InstanceLock::Result::shared) return true;
    if (const std::string language = SettingsStore.GetValue("Language"); LanguageExists(language))
        programSettings.Language = language;
    const std::string text = LnBox("mSecondInstance");
    return messageBox(
               text.empty() ? "Zentrova already runs on this folder. Start a second one all the same?" : text,
               kTitle, BoxKind::question, BoxButtons::yesNo,
               Verbs("vbStartSecond", "vbDoNotStart")) == BoxAnswer::yes;
}

void warnOfReadOnlyFolder() {
    if (ProgramFolderWritable()) return;
    std::string text = LnBox("mFolderNotWritable");
    if (text.empty()) text = "Nothing will be saved: this folder cannot be written:";
    messageBox(text + "\r\n" + programFolder(), kTitle, BoxKind::warning, BoxButtons::ok);
}

void openDataFiles() {
    SetProgress(2);
    SplashStep("Loading ini files");
    step("zv.ini", [] {
        SetStorePaths();
        SweepTemporaries();
        OpenIniFile();
    });
    step("", [] {
        ReadMonitorSetting(static_cast<int>(monitors().size()));
        ShowSplash();
    });
    step("", [] {
        ErrorLogOn = ReadErrorLogSetting();
        ErrLog("", kLogSeparator);
        ErrLog("", "Starting program");
    });
    step("language.ini", OpenLanguageFile);
    step("account.ini", OpenAccountFile);
    step("palette.ini", OpenPaletteFile);
    if (PlaylistsEnabled) {
        step("playlist.ini", [] {
            OpenPlaylistFile();
            LoadLockedFiles();
        });
    }
    step("urls.txt", [] {
        if (OpenUrlsFile()) SortURLs();
    });
    step("DISPpresets.ini", OpenDispPresets);
    step("VUpresets.ini", OpenVUPresets);
    step("FXpresets.ini", OpenFXPresets);
}

void loadSettings() {
    SetProgress(6);
    SplashStep("Loading settings");
    step("LoadZVini", [] {
        LoadZVini();
        SweepParts();
        SetProcessPriority(programSettings.ProcPriority);
    });
    SetProgress(7);
    step("HotJingles.ini", OpenHotFile);
    SplashStep("Loading MIDI settings");
    SetProgress(18);
    step("MIDI.ini", [] {
        OpenMIDIFile();
        StartMIDI();
    });
    SplashStep("Loading Time announce file");
    step("Time announce file", [] {
        if (!FileExists(GetFullPath(announcerSettings.TimeAnnouncer)))
            ErrLog("", "The time announcement is missing: " + announcerSettings.TimeAnnouncer);
    });
}

void loadLanguage() {
    SplashStep("Loading main window language");
    for (const char* window : {"frmMain", "frmShortcuts", "frmRenameFile"})
        step("LnStrings(" + std::string(window) + ")", [&] { LnStrings(window); });
    SetProgress(23);
    SplashStep("Loading settings window language");
    for (const char* window : {"frmSett", "frmMixer", "frmMIDI"})
        step("LnStrings(" + std::string(window) + ")", [&] { LnStrings(window); });
    SetProgress(30);
}

void buildWindows() {
    SplashStep("Loading main interface");
    step("Load frmMain", [] {
        frmMain().window.onClose = [] { Form_Unload(); };
        Form_Load();
    });
    SetProgress(30);
    SplashStep("Building main interface");
    step("FormsLoad frmMain", [] { FormsLoad("frmMain"); });
    SetProgress(70);
    // 75, "Building settings interface", and 90, "Building other interfaces": with those windows.
}

void startAudio() {
    SplashStep("Starting audio devices");
    SetProgress(95);
    step("", [] { engine::audioLibraryControl()->install(soundPorts(deviceSettings.SoundSystem)); });
    step("", ListOutDev);
    step("", [] {
        if (deviceSettings.DeviceSingle != 0)
            bassini(0);
        else
            SetupMixers();
    });
    step("", ListInDev);
    step("", [] {
        if (volumeSettings.InputEnabled == 1) OpenMic();
    });
}

void showMain() {
    SplashStep("Enjoy!");
    SetProgress(100);
    step("", [] { showWindow(frmMain().window); });
    step("frmMain.Show", [] {
        PalFileTest();
        lstPalRefresh();
        paletteSettings.PaletteIndex = CheckSection(paletteSettings.PaletteIndex);
        frmMain().display.txtDisPal.caption = paletteSettings.PaletteIndex;
        SelectPalette(paletteSettings.PaletteIndex);
        LoadingUI = false;
        FormDraw("init");
        StartTimers();
        if (paletteListSettings.CenterLstPal == 1) CentrePaletteList();
    });
    step("", [] { setAlwaysOnTop(frmMain().window, windowSettings.AlwaysOnTop == 1); });
    // The checks for updates and notifications come here.
    step("", AllowMIDIFeedback);
    step("", UnloadSplash);
}

void openPalette() {
    step("", [] { OpenFile(paletteSettings.PaletteIndex); });
    step("", [] { OpenFile(); });
}

}  // namespace

bool Main(const CommandLine& commandLine) {
    guarded("modMain.Main", [] {
        FillUpcalls();
        onJobFailure = [](const std::string& name, const std::exception_ptr& error) {
            guarded(name, [&] { std::rethrow_exception(error); });
        };
        CtrlDown = (modifierKeys() & kCtrlMask) != 0;
        LoadingUI = true;
    });
    SetProgress(0);
    SplashStep("Starting Zentrova");
    StartTrace();
    FillTraceLog("Start");

    bool ready = false;
    guarded("modMain.Main", [&] { ready = loadEngine(); });
    if (!ready) return false;
    FillTraceLog("BASS");
    SetProgress(80);
    processEvents();

    bool allowed = true;
    guarded("modMain.Main", [&] { allowed = secondProgramAllowed(); });
    if (!allowed) {
        UnloadSplash();
        return false;
    }
    openDataFiles();
    step("", warnOfReadOnlyFolder);
    loadSettings();
    loadLanguage();
    buildWindows();
    startAudio();
    showMain();
    openPalette();
    guarded("modMain.Main", [&] {
        setFocus(frmMain().window);
        if (commandLine.trace) WriteTraceStart();
    });
    return true;
}

void Form_Unload() {
    guarded("frmMain.Form_Unload", EndMIDI);
    guarded("frmMain.Form_Unload", frmMainUnload);
    guarded("frmMain.Form_Unload", [] { endJobs(kJobsPatienceMs); });
    guarded("frmMain.Form_Unload", [] { FreeBASS(); });
    guarded("frmMain.Form_Unload", [] { callUp(startupUpcalls.unloadOtherWindows); });
    guarded("frmMain.Form_Unload",
            [] { ErrLog("", "Program normal exit at " + FormatTime(clockSettings.TimeFormat, wallTime())); });
    guarded("frmMain.Form_Unload", [] {
        instanceLock.release();
        if (programSettings.ShutdownOnQuit == 1) runMinimised("systemctl poweroff");
    });
    quit(0);
}

void EndAsked() {
    static bool asked = false;
    if (std::exchange(asked, true)) return;
    guarded("frmMain.EndAsked", SaveZVini);
    if (frmMain().window.onClose) frmMain().window.onClose();
}

}  // namespace zv
