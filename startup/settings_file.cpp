#include "startup/settings_file.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/folders_settings.h"
#include "startup/settings/labels_settings.h"
#include "startup/settings/program_settings.h"
#include "startup/settings/window_settings.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <map>
#include <set>

#include "platform/desktop.h"
#include "platform/paths.h"
#include "startup/backups.h"
#include "startup/errors.h"
#include "startup/helpers.h"
#include "startup/ini_text.h"
#include "startup/language.h"
#include "startup/settings_table.h"
#include "startup/stores.h"
#include "startup/text_codec.h"
#include "startup/upcalls.h"

namespace zv {

namespace {

namespace fs = std::filesystem;

constexpr const char* kObsoleteKeys[] = {"CueRepeater", "BottomMargin", "RightMargin"};
constexpr std::array kMixerRates{11025, 22050, 44100, 48000, 96000};
constexpr const char* kSamplePalette = "Sample Radio";
constexpr const char* kNoImportFolder = ":";
constexpr int kFullScreenMode = 2;

std::int64_t iniFileDate = 0;   ///< ns since 1970
std::set<std::string> keptOut;  ///< keys that hold for this run only

std::int64_t dateOfIniFile() { return fileState(nativePath(IniFile)).modified; }

cImpulse& storeOf(const SettingKey& key) {
    return key.rules.special == Special::account ? AccountStore : SettingsStore;
}

std::int32_t& numberOf(const SettingKey& key) { return *std::get<std::int32_t*>(key.field); }
std::string& textOf(const SettingKey& key) { return *std::get<std::string*>(key.field); }
bool isNumber(const SettingKey& key) { return key.type != SettingType::text; }

/// Values in the course of one load: the keys that need a default and those that could not be used.
struct Load {
    bool first;
    std::vector<cImpulse::Line> defaults;
    std::string bad;
    int errorNumber = 0;
};

std::string defaultOf(const SettingKey& key, const Load& load) {
    switch (key.rules.special) {
        case Special::palette:
            return FileLength(PalFile) > 0 ? kSamplePalette : "";
        case Special::lastFolder:
            return GetRelPath(folderSettings.SampleDir);
        case Special::language:
            return programSettings.Sealed.empty() ? LanguageChosenBySystem() : kEnglish;
        case Special::ignoredUpdate:
            return ProgramVersionDigits();
        case Special::today:
            return LogDate();
        case Special::grid:
            return load.first ? SettingDefault(key) : SettingText(key);
        default:
            return SettingDefault(key);
    }
}

bool hasDefault(const SettingKey& key) {
    const Special way = key.rules.special;
    return way != Special::anything && way != Special::deviceSingle && way != Special::mixerFreq &&
           way != Special::sealed;
}

/// The reading idiom; the default reaches the file with all others at the end.
std::string readKey(const SettingKey& key, Load& load) {
    std::string value = storeOf(key).GetValue(key.key);
    if (!value.empty() || !hasDefault(key)) return value;
    value = defaultOf(key, load);
    if (!value.empty()) load.defaults.emplace_back(key.key, value);
    return value;
}

void complain(Load& load, const SettingKey& key, const std::string& value, Conversion why) {
    if (load.bad.empty()) load.errorNumber = why == Conversion::overflow ? kErrorOverflow : kErrorMismatch;
    load.bad += (load.bad.empty() ? "" : ", ") + std::string(key.key) + "=" + value;
}

void loadMixerFreq(const std::string& value, const SettingKey& key, Load& load) {
    SetSetting(key, SettingDefault(key));
    if (value.empty()) return;
    std::int32_t rate = 0;
    const Conversion result = ToWhole(value, key.type, rate);
    if (result != Conversion::good) {
        complain(load, key, value, result);
    } else if (std::find(kMixerRates.begin(), kMixerRates.end(), rate) != kMixerRates.end()) {
        deviceSettings.MixerFreq = rate;
    }
}

std::string usableLanguage(const std::string& name) {
    const std::string language = SameText(name, "French") ? kFrench : name;
    return LanguageExists(language) ? language : kEnglish;
}

void loadKey(const SettingKey& key, Load& load) {
    std::string value = readKey(key, load);
    switch (key.rules.special) {
        case Special::alwaysOnTop:
            windowSettings.AlwaysOnTop =
                value.empty() || value == "0" || SameText(value, "Faux") || SameText(value, "False") ? 0 : 1;
            return;
        case Special::anything:
            numberOf(key) = value.empty() ? 0 : 1;
            return;
        case Special::deviceSingle:
            deviceSettings.DeviceSingle = deviceSettings.DeviceSinglePending = value.empty() ? 0 : 1;
            return;
        case Special::mixerFreq:
            loadMixerFreq(value, key, load);
            return;
        case Special::sealed:
            programSettings.Sealed = value;
            if (value.empty()) load.defaults.emplace_back(key.key, SettingDefault(key));
            return;
        case Special::folder:
            textOf(key) = GetFullPath(value);
            return;
        case Special::lastFolder:
            textOf(key) = GetFullPath(value);
            if (!FolderExists(textOf(key))) textOf(key) = folderSettings.SampleDir;
            return;
        case Special::importFolder:
            textOf(key) = value == kNoImportFolder ? "" : value;
            return;
        case Special::language:
            programSettings.Language = usableLanguage(value);
            return;
        case Special::font:
            labelSettings.JLabelFont = fontInstalled(value) ? value : kSplashFont;
            return;
        case Special::ignoredUpdate:
            programSettings.IgnoredUpdate = std::max(value, ProgramVersionDigits());
            return;
        default:
            break;
    }
    const Conversion result = SetSetting(key, value);
    if (result != Conversion::good) complain(load, key, value, result);
}

/// The text that the file is to hold for a field.
std::string textToSave(const SettingKey& key) {
    switch (key.rules.special) {
        case Special::deviceSingle:
            return deviceSettings.DeviceSinglePending != 0 ? "1" : "";
        case Special::mixerFreq:
            return SettingText(key) == SettingDefault(key) ? "" : SettingText(key);
        case Special::folder:
        case Special::lastFolder:
            return GetRelPath(textOf(key));
        case Special::importFolder:
            return textOf(key).empty() ? kNoImportFolder : textOf(key);
        default:
            return SettingText(key);
    }
}

/// True when what the file holds means what the field holds.
bool sameInFile(const SettingKey& key, const std::string& inFile, const std::string& wanted) {
    if (inFile == wanted) return true;
    if (key.rules.special == Special::deviceSingle) return inFile.empty() == wanted.empty();
    if (key.rules.special == Special::folder || key.rules.special == Special::lastFolder) {
        return !inFile.empty() && GetFullPath(inFile) == textOf(key);
    }
    if (!isNumber(key)) return false;
    const std::optional<double> number = ToNumber(inFile);
    return number && !wanted.empty() && *number == ToNumber(wanted);
}

}  // namespace

void NoteIniFileDate() { iniFileDate = dateOfIniFile(); }

void KeepOutOfFile(const std::string& key) { keptOut.insert(LowerCase(key)); }

void LoadZVini(bool firstLoad) {
    Load load{.first = firstLoad, .defaults = {}, .bad = {}};
    for (const SettingKey& key : SettingKeys()) loadKey(key, load);
    if (windowSettings.FullScreen == 1) windowSettings.WindowMode = kFullScreenMode;
    for (const char* key : kObsoleteKeys) {
        if (!SettingsStore.GetValue(key).empty()) load.defaults.emplace_back(key, "");
    }
    if (!load.defaults.empty()) SettingsStore.PutSection(kSettingsSection, load.defaults, false);
    callUp(startupUpcalls.gridChanged);
    if (!load.bad.empty()) {
        const char* what = load.errorNumber == kErrorOverflow ? "Overflow: " : "Type mismatch: ";
        ErrorReport("modMain.LoadZVini", load.errorNumber, what + load.bad);
    }
}

void SaveZVini() {
    std::vector<cImpulse::Line> changed;
    std::vector<cImpulse::Line> account;
    for (const SettingKey& key : SettingKeys()) {
        if (!key.rules.savedAtExit || keptOut.contains(LowerCase(key.key))) continue;
        const std::string wanted = textToSave(key);
        if (sameInFile(key, storeOf(key).GetValue(key.key), wanted)) continue;
        (key.rules.special == Special::account ? account : changed).emplace_back(key.key, wanted);
    }
    if (!changed.empty()) SettingsStore.PutSection(kSettingsSection, changed, false);
    if (!account.empty()) AccountStore.PutSection(kAccountSection, account, false);
    if (dateOfIniFile() > iniFileDate) SortZVini();
}

void SortZVini() {
    std::string bytes;
    if (!readFile(nativePath(IniFile), bytes)) return;
    std::vector<std::string> lines = Split(isMarkedUtf16(bytes) ? textOf(bytes) : bytes, "\n");
    if (!lines.empty() && lines.back().empty()) lines.pop_back();
    for (std::string& line : lines) {
        if (line.ends_with('\r')) line.pop_back();
    }
    if (!lines.empty() && lines.front().starts_with(kUtf8Mark)) lines.front().erase(0, kUtf8Mark.size());
    const std::string ours = std::string("[") + kSettingsSection + "]";
    const auto isOurs = [&](const std::string& line) { return SameText(trimmedBlanks(line), ours); };
    const auto isHeader = [](const std::string& line) { return trimmedBlanks(line).starts_with('['); };
    // Where the header is missing the first line is taken for it.
    auto header = std::find_if(lines.begin(), lines.end(), isOurs);
    if (header == lines.end()) header = lines.begin();
    // Other sections stay as they are: those above come behind.
    std::vector<std::string> sorted, others;
    const auto firstAbove = std::find_if(lines.begin(), header, isHeader);
    const auto firstBehind = header == lines.end() ? header : std::find_if(header + 1, lines.end(), isHeader);
    std::copy_if(lines.begin(), firstAbove, std::back_inserter(sorted),
                 [](const std::string& line) { return !trimmedBlanks(line).empty(); });
    if (header != lines.end()) sorted.insert(sorted.end(), header + 1, firstBehind);
    others.insert(others.end(), firstAbove, header);
    others.insert(others.end(), firstBehind, lines.end());

    std::map<std::string, std::string> bytesOf;  // each line keeps the encoding it has
    for (std::string& line : sorted) {
        std::string text = textOf(line);
        bytesOf[text] = std::move(line);
        line = std::move(text);
    }
    QuickSort(sorted);
    const char* lineEnd =
        bytes.find('\n') != std::string::npos && bytes.find("\r\n") == std::string::npos ? "\n" : "\r\n";
    std::string file = ours + lineEnd;
    for (const std::string& line : sorted) file.append(bytesOf[line]).append(lineEnd);
    for (const std::string& line : others) file.append(line).append(lineEnd);
    if (file != bytes) replaceFile(nativePath(IniFile), file);
}

std::string ReadSetting(std::string_view key, std::string_view def) {
    std::string value = SettingsStore.GetValue(key);
    if (!value.empty()) return value;
    SettingsStore.PutValue(key, def);
    value = SettingsStore.GetValue(key);
    return value.empty() ? std::string(def) : value;
}

void WriteSetting(std::string_view key, std::string_view value) { SettingsStore.PutValue(key, value); }

int ReadMonitorSetting(int monitorCount) {
    std::int32_t monitor = 0;
    const bool good = ToWhole(ReadSetting("Monitor", "0"), SettingType::word, monitor) == Conversion::good;
    windowSettings.Monitor = good && monitor >= 0 && monitor < monitorCount ? monitor : 0;
    return windowSettings.Monitor;
}

bool ReadErrorLogSetting() {
    std::int32_t on = 0;
    ToWhole(ReadSetting("ErrorLog", "0"), SettingType::byte, on);
    programSettings.ErrorLog = on;
    ErrorLogOn = on != 0;
    return ErrorLogOn;
}

std::string CheckSection(const std::string& name) {
    if (!startupUpcalls.paletteNames) return name;
    const std::vector<std::string> names = startupUpcalls.paletteNames();
    for (const std::string& entry : names) {
        if (SameText(entry, name)) return entry;
    }
    return names.empty() ? std::string() : names.front();
}

void ResetSettings() {
    for (const SettingKey& key : SettingKeys()) {
        if (isNumber(key)) {
            numberOf(key) = std::get<std::int32_t>(key.standard);
        } else {
            textOf(key) = std::get<const char*>(key.standard);
        }
    }
    windowSettings.Monitor = 0;
    deviceSettings.DeviceSinglePending = 0;
}

std::string SettingsDump() {
    std::string out;
    for (const SettingKey& key : SettingKeys()) {
        out.append(key.key).append("=").append(SettingText(key)).append("\n");
    }
    return out;
}

}  // namespace zv
