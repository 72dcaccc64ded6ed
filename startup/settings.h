/// The settings: one plain record with a field for every key of zv.ini, under the key's name. Filled once at
/// start (and again after a reset) by LoadZVini, written back at exit by SaveZVini; in between the fields are
/// the truth. Flags are 0 and 1. Colours are 0xBBGGRR. Touched on the interface thread only. [control]
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zv {

/// A streaming server on the studio's own machine, where the usual ones answer.
inline constexpr const char* kDefaultStreamUrl = "http://localhost:8000/live";
inline constexpr const char* kSplashFont = "MS Sans Serif";
inline constexpr const char* kEnglish = "English";
inline constexpr const char* kFrench = "Français";

struct Settings {
    // ---- window and general ----
    int WinState = 2;                        ///< 0 normal, 1 minimised, 2 maximised
    int WinWidth = 12000, WinHeight = 8565;  ///< twips
    int PosTop = 0, PosLeft = 0;             ///< twips
    int Monitor = 0;                         ///< index of the monitor in use; never above the last one
    int ErrorLog = 0;                        ///< 1: every ErrLog line reaches Error.log
    int FullScreen = 0;                      ///< 1 forces WindowMode 2
    int WindowMode = 0;                      ///< window frame mode
    int AlwaysOnTop = 0;
    int ProcPriority = 32;  ///< class given to SetProcessPriority
    int ActiveTab = 0, ActiveSTab = 0, ActiveFXTab = 0;
    int ConfirmExit = 1, ShutdownOnQuit = 0, HoldExitToShutDown = 0;
    int CheckUpdate = 1, UpdateChannel = 0;
    std::string IgnoredUpdate;                     ///< version digits that the user declined
    std::string PRAfterDate;                       ///< "YYYY-mm-dd"
    std::string SupportUsername, SupportPassword;  ///< kept in account.ini
    std::string Language = kEnglish;               ///< section of language.ini
    std::string Sealed;  ///< empty until the language was chosen once from the system

    // ---- palette and jingles ----
    std::string PaletteIndex;                 ///< name of the palette now in J; empty when none is open
    std::string SampleDir;                    ///< absolute; a trailing separator is not promised (RPP)
    std::string LastcmDlgDir;                 ///< absolute
    std::string ImportFolderName = "Import";  ///< empty: none (the file says ":")
    int ImportFiles = 1;
    int OpenReloc = 1;
    int AutoSave = 0;
    int JinglesRows = 6;       ///< 4..8
    int JinglesCols = 5;       ///< 4..12
    int HotJinglesRows = 2;    ///< 1..2
    int HotJinglesPos = 2;     ///< 0..2
    int HotJinglesHeight = 2;  ///< 1..10
    int JoinedJButtons = 0;    ///< 1: the gap is 60 twips
    int JLabelFormat = 0;      ///< 0..6
    std::string JLabelFont = kSplashFont;
    int JLabelFontSize = 12;  ///< 1..20
    int JLabelAutoSize = 1, JLabelFontBold = 0, JLabelFontItalic = 0;
    std::int32_t JLabelFontColor = 0, JLabelFontColorCB = 0;
    std::string JLabelSeparator = "[]";
    int JNumbPos = 0;
    int JDispDuration = 1;
    std::string JDispDurationEncap = "duration";  ///< see JDurationPrefix, JDurationSuffix
    int JRemLevPos = 1, JRemLevThickness = 1;     ///< position 0: no bar
    std::int32_t JRemLevCol = 0xFF, JRemLevColBg = 0, JRemLevColBgPl = 0;
    int JRemLevTrBg = 1;
    int JU2Sp = 1, InhibSpBar = 0;
    int BringLstPal = 1, CenterLstPal = 1, LoopLstPal = 1;
    int DarkLstPal = 0, RevLstPalCol = 0;
    int DisPalName = 1, LockDisPalName = 0;
    std::int32_t PalColor = 0xFFFF80;
    int DisplayJingleSearch = 1, ResultsInSearch = 1, AutoClJSearchSec = 0, BlinksJSearch = 5;

    // ---- display, colours, minimal view ----
    std::string TimeFormat = "HH:mm:ss", DateFormat = "ddd dd mmmm yyyy";
    std::int32_t DateTimeColor = 0x80FF, CountDownColor = 0xFFFF80, DispBackCol = 0, RemainColor = 0x80FF;
    int WarnAllJ = 0, DispCSec = 0, BlinkWarn = 0;
    int BlinkTarget = 2;  ///< 0 the digits, 1 the bars, 2 both
    int DispSpeed = 70;   ///< the display ticks each 110 - DispSpeed ms
    int RemainWarn = 3;   ///< seconds
    int DarkMode = 0;
    std::int32_t DarkBackColor = 0x202020, DarkForeColor = 0xFFFFFF, ColForeCB = 0xFFFFFF, ColForeCBDM = 0;
    int BrightThresh = 90;
    int ShadeOffsetVal = 0;
    std::int32_t PlayingColor = 0xC0FFC0, PlayingFColor = 0, PlayingColorAnotherPal = 0xFFFFFF;
    std::int32_t lpColor = 0x80C0FF, sqColor = 0xBAFF00, fxColor = 0xFFFF80, coColor = 0x8880FF,
                 arColor = 0x80FFFF, tcColor = 0x80FF80, psColor = 0x8080FF, nsColor = 0xFFCC99,
                 taColor = 0xFFC0C0, amColor = 0xFFFF00, assColor = 0xFFC0FF, spColor = 0xFFFFC0,
                 toColor = 0x1091FF, moColor = 0x4CFF4C;  ///< base colours of the marks and toggles
    int MinimalView = 0, MinimalTop = 0, ClockEnabled = 1, DateEnabled = 1, MVHideElmts = 0;
    std::string MVElmtsOrder = "1,2,4,8,16,32,64,128";

    // ---- meters ----
    std::string VUPos = "r";
    int VUGradient = 1, VUSolid = 0, VUPeak = 1;
    int VUPeakDelay = 100;      ///< ms
    int VUMid = 70, VUHi = 90;  ///< percent of the bar
    std::int32_t VULowCol = 0xFF00, VUMidCol = 0xFFFF, VUHiCol = 0xFF, VUBackCol = 0;
    int VUspeed = 7;  ///< 1..20; the meters tick each (11 - VUspeed) x 10 ms
    int VUpersist = 1, VUchan = 0;
    int VuRMS = 0;  ///< 1 when the key holds anything

    // ---- audio ----
    int Touch = 0, Autorepeat = 0;
    int AutoMix = 0;
    int AutoMixTime = 1500;  ///< ms
    int LogFadeOut = 0;
    int FadeInAdvance = 500, FadeInSpeed = 1500, FadeOutSpeed = 500;  ///< ms
    int AttnVol = 15, InTOThresh = 15, InTORelease = 500, AutoDuckMode = 0, AutoDuckThreshold = 15;
    int Volume = 100, VolumeAux = 100;  ///< percent
    int InputEnabled = 0, VolumeInMain = 100, VolumeInAux = 100, VolInLink = 1;
    std::string SavDevBy = "ID";  ///< "ID" or "Name"
    std::string DeviceName, DeviceAuxName, DeviceInName;
    int Device = 1, DeviceAux = 0, DeviceIn = 0;
    int DeviceSingle = 0;         ///< as in force for this run; 1 when the key holds anything
    int DeviceSinglePending = 0;  ///< as chosen in the window; the one that is saved
    int MixerFreq = 44100;        ///< Hz
    int TempoMax = 30;            ///< percent, 5 and up
    int EQVMax = 10;              ///< dB
    std::string EQBands = "60,150,400,1000,2400,6000,15000";  ///< Hz
    std::string StreamPoint = kDefaultStreamUrl;
    int NoAutomixLive = 0, LiveAutoDuck = 0, VolLive = 0, CoefVolLive = 1;
    std::string TimeAnnouncer = "Time_Announce.wav";
    int TimeAnnMin = 59, TimeAnnSec = 55, TimeAnnDel = 4;

    // ---- MIDI ----
    int MIDIEnabled = 1, MIDIAutoHide = 1, MIDIOutFixedEnabled = 0;
    std::string MIDIDevice, MIDIOutFixedDevice;
    int MIDIOutFixedChan = 1;   ///< 1..16
    int MIDIOutFixedVel = 127;  ///< 0..127
};

extern Settings settings;

/// Text before and after the word "duration" in JDispDurationEncap; both empty without the word.
std::string JDurationPrefix();
std::string JDurationSuffix();

/// Fills `settings` from zv.ini. A key that is missing or empty gets its default, in the file too; obsolete
/// keys go; values out of range are clamped in the record only. A value that does not convert leaves its
/// field as it was and goes to the error report, one report for all of them. Tells the window logic to
/// prepare its lists and the model that the grid's size is known (upcalls). `firstLoad` false: a settings
/// reset, the grid's size keeps its value when the file lacks it.
void LoadZVini(bool firstLoad = true);

/// Writes what differs from the file, in one rewrite, then sorts the file if it is newer than at start.
/// A file that cannot be written stays as it was.
void SaveZVini();

/// What the field of `key` holds from now on counts for this run only: SaveZVini leaves the key alone.
void KeepOutOfFile(const std::string& key);

/// Replaces the file by "[Settings]" and its other lines in sorted order; its first line goes, whatever it
/// holds.
void SortZVini();

/// Remembers the date of zv.ini; SaveZVini sorts when the file is newer than this.
void NoteIniFileDate();

/// One key by the reading idiom (a missing or empty value writes `def` to the file), as text.
std::string ReadSetting(std::string_view key, std::string_view def);
/// The settings that are read before LoadZVini: the monitor of the splash (0 when it is not there; the file
/// keeps its value) and the switch of the log. They set their fields of `settings`.
int ReadMonitorSetting(int monitorCount);
bool ReadErrorLogSetting();
/// Writes one key at once, for the few that are saved when they change (Touch, Autorepeat, ActiveFXTab, ...).
void WriteSetting(std::string_view key, std::string_view value);

/// `name` if the list of palettes has it, else the first entry, empty when there is none.
std::string CheckSection(const std::string& name);

/// Every setting as "key=value" in the order of loading, for state dumps.
std::string SettingsDump();

}  // namespace zv
