#include "startup/settings_table.h"

#include <cmath>

#include "startup/helpers.h"

namespace zv {
namespace {

using S = Settings;

constexpr SettingKey text(const char* key, std::string S::*field, const char* def = "",
                          Special special = Special::none) {
    SettingKey k{key, field, def};
    k.special = special;
    return k;
}

constexpr SettingKey flag(const char* key, std::int32_t S::*field, const char* def) {
    return {key, field, def, Width::byte};
}

constexpr SettingKey number(const char* key, std::int32_t S::*field, const char* def,
                            Width width = Width::whole) {
    return {key, field, def, width};
}

constexpr SettingKey clamped(const char* key, std::int32_t S::*field, const char* def, int low, int high,
                             Special special = Special::none) {
    SettingKey k{key, field, def, Width::byte, Outside::clamp, low, high};
    k.special = special;
    return k;
}

constexpr SettingKey replaced(const char* key, std::int32_t S::*field, const char* def, int low, int high,
                              int otherwise) {
    return {key, field, def, Width::byte, Outside::value, low, high, otherwise};
}

constexpr SettingKey special(const char* key, std::int32_t S::*field, const char* def, Special how) {
    SettingKey k{key, field, def};
    k.special = how;
    return k;
}

constexpr SettingKey notSaved(SettingKey k) {
    k.saved = false;
    return k;
}

constexpr int kNoLimit = std::numeric_limits<std::int32_t>::max();

// clang-format off
constexpr SettingKey kKeys[] = {
    // the first five, in the order of saving
    text("DateFormat", &S::DateFormat, "ddd dd mmmm yyyy"),
    text("TimeFormat", &S::TimeFormat, "HH:mm:ss"),
    number("DateTimeColor", &S::DateTimeColor, "33023"),
    flag("BlinkWarn", &S::BlinkWarn, "0"),
    flag("BlinkTarget", &S::BlinkTarget, "2"),
    // window and general
    flag("WinState", &S::WinState, "2"),
    number("WinWidth", &S::WinWidth, "12000"),
    number("WinHeight", &S::WinHeight, "8565"),
    number("PosTop", &S::PosTop, "0"),
    number("PosLeft", &S::PosLeft, "0"),
    flag("ErrorLog", &S::ErrorLog, "0"),
    flag("FullScreen", &S::FullScreen, "0"),
    flag("WindowMode", &S::WindowMode, "0"),
    special("AlwaysOnTop", &S::AlwaysOnTop, "0", Special::alwaysOnTop),
    number("ProcPriority", &S::ProcPriority, "32"),
    flag("ActiveTab", &S::ActiveTab, "0"),
    flag("ActiveSTab", &S::ActiveSTab, "0"),
    notSaved(flag("ActiveFXTab", &S::ActiveFXTab, "0")),
    flag("ConfirmExit", &S::ConfirmExit, "1"),
    flag("ShutdownOnQuit", &S::ShutdownOnQuit, "0"),
    flag("HoldExitToShutDown", &S::HoldExitToShutDown, "0"),
    flag("CheckUpdate", &S::CheckUpdate, "1"),
    flag("UpdateChannel", &S::UpdateChannel, "0"),
    notSaved(text("IgnoredUpdate", &S::IgnoredUpdate, "", Special::ignoredUpdate)),
    notSaved(text("PRAfterDate", &S::PRAfterDate, "", Special::today)),
    text("SupportUsername", &S::SupportUsername, "", Special::account),
    text("SupportPassword", &S::SupportPassword, "", Special::account),
    notSaved(text("Sealed", &S::Sealed, "0", Special::sealed)),
    text("Language", &S::Language, kEnglish, Special::language),
    // palette and jingles
    text("PaletteIndex", &S::PaletteIndex, "", Special::palette),
    text("SampleDir", &S::SampleDir, "Audio_Sample", Special::folder),
    text("LastcmDlgDir", &S::LastcmDlgDir, "", Special::lastFolder),
    text("ImportFolderName", &S::ImportFolderName, "Import", Special::importFolder),
    flag("ImportFiles", &S::ImportFiles, "1"),
    flag("OpenReloc", &S::OpenReloc, "1"),
    flag("AutoSave", &S::AutoSave, "0"),
    clamped("JinglesRows", &S::JinglesRows, "6", 4, 8, Special::grid),
    clamped("JinglesCols", &S::JinglesCols, "5", 4, 12, Special::grid),
    clamped("HotJinglesRows", &S::HotJinglesRows, "2", 1, 2),
    replaced("HotJinglesPos", &S::HotJinglesPos, "2", 0, 2, 2),
    clamped("HotJinglesHeight", &S::HotJinglesHeight, "2", 1, 10),
    flag("JoinedJButtons", &S::JoinedJButtons, "0"),
    replaced("JLabelFormat", &S::JLabelFormat, "0", 0, 6, 0),
    text("JLabelFont", &S::JLabelFont, kSplashFont, Special::font),
    clamped("JLabelFontSize", &S::JLabelFontSize, "12", 1, 20),
    flag("JLabelAutoSize", &S::JLabelAutoSize, "1"),
    flag("JLabelFontBold", &S::JLabelFontBold, "0"),
    flag("JLabelFontItalic", &S::JLabelFontItalic, "0"),
    number("JLabelFontColor", &S::JLabelFontColor, "0"),
    number("JLabelFontColorCB", &S::JLabelFontColorCB, "0"),
    text("JLabelSeparator", &S::JLabelSeparator, "[]"),
    flag("JNumbPos", &S::JNumbPos, "0"),
    flag("JDispDuration", &S::JDispDuration, "1"),
    text("JDispDurationEncap", &S::JDispDurationEncap, "duration"),
    flag("JRemLevPos", &S::JRemLevPos, "1"),
    flag("JRemLevThickness", &S::JRemLevThickness, "1"),
    number("JRemLevCol", &S::JRemLevCol, "255"),
    number("JRemLevColBg", &S::JRemLevColBg, "0"),
    number("JRemLevColBgPl", &S::JRemLevColBgPl, "0"),
    flag("JRemLevTrBg", &S::JRemLevTrBg, "1"),
    flag("JU2Sp", &S::JU2Sp, "1"),
    flag("InhibSpBar", &S::InhibSpBar, "0"),
    flag("BringLstPal", &S::BringLstPal, "1"),
    flag("CenterLstPal", &S::CenterLstPal, "1"),
    flag("LoopLstPal", &S::LoopLstPal, "1"),
    flag("DarkLstPal", &S::DarkLstPal, "0"),
    flag("RevLstPalCol", &S::RevLstPalCol, "0"),
    flag("DisPalName", &S::DisPalName, "1"),
    flag("LockDisPalName", &S::LockDisPalName, "0"),
    number("PalColor", &S::PalColor, "16777088"),
    flag("DisplayJingleSearch", &S::DisplayJingleSearch, "1"),
    flag("ResultsInSearch", &S::ResultsInSearch, "1"),
    flag("AutoClJSearchSec", &S::AutoClJSearchSec, "0"),
    flag("BlinksJSearch", &S::BlinksJSearch, "5"),
    // display, colours, minimal view
    number("CountDownColor", &S::CountDownColor, "16777088"),
    number("DispBackCol", &S::DispBackCol, "0"),
    number("RemainColor", &S::RemainColor, "33023"),
    flag("WarnAllJ", &S::WarnAllJ, "0"),
    flag("DispCSec", &S::DispCSec, "0"),
    flag("DispSpeed", &S::DispSpeed, "70"),
    flag("RemainWarn", &S::RemainWarn, "3"),
    flag("DarkMode", &S::DarkMode, "0"),
    number("DarkBackColor", &S::DarkBackColor, "2105376"),
    number("DarkForeColor", &S::DarkForeColor, "16777215"),
    number("ColForeCB", &S::ColForeCB, "16777215"),
    number("ColForeCBDM", &S::ColForeCBDM, "0"),
    flag("BrightThresh", &S::BrightThresh, "90"),
    flag("ShadeOffsetVal", &S::ShadeOffsetVal, "0"),
    number("PlayingColor", &S::PlayingColor, "12648384"),
    number("PlayingFColor", &S::PlayingFColor, "0"),
    number("PlayingColorAnotherPal", &S::PlayingColorAnotherPal, "16777215"),
    number("lpColor", &S::lpColor, "8438015"),
    number("sqColor", &S::sqColor, "12254976"),
    number("fxColor", &S::fxColor, "16777088"),
    number("coColor", &S::coColor, "8945919"),
    number("arColor", &S::arColor, "8454143"),
    number("tcColor", &S::tcColor, "8454016"),
    number("psColor", &S::psColor, "8421631"),
    number("nsColor", &S::nsColor, "16764057"),
    number("taColor", &S::taColor, "16761024"),
    number("amColor", &S::amColor, "16776960"),
    number("assColor", &S::assColor, "16761087"),
    number("spColor", &S::spColor, "16777152"),
    number("toColor", &S::toColor, "1085951"),
    number("moColor", &S::moColor, "5046092"),
    flag("MinimalView", &S::MinimalView, "0"),
    flag("MinimalTop", &S::MinimalTop, "0"),
    flag("ClockEnabled", &S::ClockEnabled, "1"),
    flag("DateEnabled", &S::DateEnabled, "1"),
    number("MVHideElmts", &S::MVHideElmts, "0", Width::word),
    text("MVElmtsOrder", &S::MVElmtsOrder, "1,2,4,8,16,32,64,128"),
    // meters
    text("VUPos", &S::VUPos, "r"),
    flag("VUGradient", &S::VUGradient, "1"),
    flag("VUSolid", &S::VUSolid, "0"),
    flag("VUPeak", &S::VUPeak, "1"),
    number("VUPeakDelay", &S::VUPeakDelay, "100", Width::word),
    flag("VUMid", &S::VUMid, "70"),
    flag("VUHi", &S::VUHi, "90"),
    number("VULowCol", &S::VULowCol, "65280"),
    number("VUMidCol", &S::VUMidCol, "65535"),
    number("VUHiCol", &S::VUHiCol, "255"),
    number("VUBackCol", &S::VUBackCol, "0"),
    clamped("VUspeed", &S::VUspeed, "7", 1, 20),
    flag("VUpersist", &S::VUpersist, "1"),
    flag("VUchan", &S::VUchan, "0"),
    notSaved(special("VuRMS", &S::VuRMS, "", Special::anything)),
    // audio
    notSaved(flag("Touch", &S::Touch, "0")),
    notSaved(flag("Autorepeat", &S::Autorepeat, "0")),
    flag("AutoMix", &S::AutoMix, "0"),
    number("AutoMixTime", &S::AutoMixTime, "1500"),
    flag("LogFadeOut", &S::LogFadeOut, "0"),
    number("FadeInAdvance", &S::FadeInAdvance, "500"),
    number("FadeInSpeed", &S::FadeInSpeed, "1500"),
    number("FadeOutSpeed", &S::FadeOutSpeed, "500"),
    flag("AttnVol", &S::AttnVol, "15"),
    flag("InTOThresh", &S::InTOThresh, "15"),
    number("InTORelease", &S::InTORelease, "500", Width::word),
    flag("AutoDuckMode", &S::AutoDuckMode, "0"),
    flag("AutoDuckThreshold", &S::AutoDuckThreshold, "15"),
    flag("Volume", &S::Volume, "100"),
    flag("VolumeAux", &S::VolumeAux, "100"),
    flag("InputEnabled", &S::InputEnabled, "0"),
    flag("VolumeInMain", &S::VolumeInMain, "100"),
    flag("VolumeInAux", &S::VolumeInAux, "100"),
    flag("VolInLink", &S::VolInLink, "1"),
    text("SavDevBy", &S::SavDevBy, "ID"),
    text("DeviceName", &S::DeviceName, ""),
    text("DeviceAuxName", &S::DeviceAuxName, ""),
    text("DeviceInName", &S::DeviceInName, ""),
    number("Device", &S::Device, "1", Width::word),
    number("DeviceAux", &S::DeviceAux, "0", Width::word),
    number("DeviceIn", &S::DeviceIn, "0", Width::word),
    special("DeviceSingle", &S::DeviceSinglePending, "", Special::anything),
    special("MixerFreq", &S::MixerFreq, "", Special::mixerFreq),
    SettingKey{"TempoMax", &S::TempoMax, "30", Width::word, Outside::clamp, 5, kNoLimit},
    number("EQVMax", &S::EQVMax, "10", Width::word),
    text("EQBands", &S::EQBands, "60,150,400,1000,2400,6000,15000"),
    text("StreamPoint", &S::StreamPoint, kDefaultStreamUrl),
    flag("NoAutomixLive", &S::NoAutomixLive, "0"),
    flag("LiveAutoDuck", &S::LiveAutoDuck, "0"),
    flag("VolLive", &S::VolLive, "0"),
    flag("CoefVolLive", &S::CoefVolLive, "1"),
    text("TimeAnnouncer", &S::TimeAnnouncer, "Time_Announce.wav"),
    flag("TimeAnnMin", &S::TimeAnnMin, "59"),
    flag("TimeAnnSec", &S::TimeAnnSec, "55"),
    flag("TimeAnnDel", &S::TimeAnnDel, "4"),
    // MIDI
    flag("MIDIEnabled", &S::MIDIEnabled, "1"),
    flag("MIDIAutoHide", &S::MIDIAutoHide, "1"),
    flag("MIDIOutFixedEnabled", &S::MIDIOutFixedEnabled, "0"),
    text("MIDIDevice", &S::MIDIDevice, ""),
    text("MIDIOutFixedDevice", &S::MIDIOutFixedDevice, ""),
    SettingKey{"MIDIOutFixedChan", &S::MIDIOutFixedChan, "1", Width::word, Outside::value, 1, 16, 1},
    SettingKey{"MIDIOutFixedVel", &S::MIDIOutFixedVel, "127", Width::word, Outside::value, 0, 127, 127},
};
// clang-format on

}  // namespace

std::span<const SettingKey> SettingKeys() { return kKeys; }

Conversion ToWhole(const std::string& text, Width width, std::int32_t& value) {
    const std::optional<double> number = ToNumber(text);
    if (!number) return Conversion::mismatch;
    const double whole = std::nearbyint(*number);  // a half goes to the even neighbour
    double low = std::numeric_limits<std::int32_t>::min();
    double high = std::numeric_limits<std::int32_t>::max();
    if (width == Width::byte) {
        low = 0;
        high = std::numeric_limits<std::uint8_t>::max();
    } else if (width == Width::word) {
        low = std::numeric_limits<std::int16_t>::min();
        high = std::numeric_limits<std::int16_t>::max();
    }
    if (whole < low || whole > high) return Conversion::overflow;
    value = static_cast<std::int32_t>(whole);
    return Conversion::good;
}

}  // namespace zv
