#include "startup/datafiles.h"

#include <chrono>
#include <filesystem>
#include <system_error>

#include "platform/paths.h"
#include "startup/backups.h"
#include "startup/helpers.h"
#include "startup/settings/live_settings.h"
#include "startup/settings_file.h"
#include "startup/stores.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

constexpr const char* kTemporaryEnd = ".zvtmp";
constexpr std::chrono::seconds kStale{60};

constexpr const char* kEmptyAccount = "[SupportForumAccount]\r\nSupportUsername=\r\nSupportPassword=\r\n";

constexpr const char* kDispPresets =
    "[VFD]\r\nDateTimeColor=33023\r\nCountDownColor=16777088\r\nDispBackCol=0\r\nRemainColor=33023\r\n"
    "PalColor=16777088\r\n"
    "[LCD]\r\nDateTimeColor=4369\r\nCountDownColor=8224\r\nDispBackCol=47031\r\nRemainColor=8224\r\n"
    "PalColor=4369\r\n"
    "[Negative LCD]\r\nDateTimeColor=46003\r\nCountDownColor=40863\r\nDispBackCol=0\r\nRemainColor=40863\r\n"
    "PalColor=46003\r\n";

constexpr const char* kVuPresets =
    "[Initial]\r\nVUGradient=1\r\nVUSolid=0\r\nVUPeak=1\r\nVUPeakDelay=100\r\nMidLevel=70\r\nHiLevel=90\r\n"
    "BackColor=0\r\nLowColor=65280\r\nMidColor=65535\r\nHiColor=255\r\n"
    "[VFD]\r\nVUGradient=0\r\nVUSolid=1\r\nVUPeak=0\r\nVUPeakDelay=100\r\nMidLevel=70\r\nHiLevel=90\r\n"
    "BackColor=0\r\nLowColor=16777088\r\nMidColor=33023\r\nHiColor=255\r\n"
    "[LCD]\r\nVUGradient=0\r\nVUSolid=1\r\nVUPeak=0\r\nVUPeakDelay=100\r\nMidLevel=70\r\nHiLevel=90\r\n"
    "BackColor=47031\r\nLowColor=40349\r\nMidColor=32896\r\nHiColor=15420\r\n"
    "[Negative "
    "LCD]\r\nVUGradient=0\r\nVUSolid=1\r\nVUPeak=0\r\nVUPeakDelay=100\r\nMidLevel=70\r\nHiLevel=90\r\n"
    "BackColor=0\r\nLowColor=30583\r\nMidColor=38807\r\nHiColor=52942\r\n";

constexpr const char* kFxPresets =
    "[FXP]\r\nBass boost=7,3,1,0,0,0,0,0,0,0,0\r\nTreble boost=0,0,0,0,1,3,7,0,0,0,0\r\n"
    "Tempo +10%=0,0,0,0,0,0,0,0,10,0,0\r\nReverb 1 sec=0,0,0,0,0,0,0,1004,0,0,0\r\n";

constexpr const char* kTextsVersion = "TextsVersion";  // of the program that language.ini came with

bool exists(const std::string& path) {
    std::error_code error;
    return fs::exists(nativePath(path), error);
}

void createIfMissing(const std::string& path, std::string_view contents = {}) {
    if (!exists(path)) replaceFile(nativePath(path), contents);
}

/// ns since 1970; 0 for what is not there.
std::int64_t dateOf(const fs::path& path) { return fileState(path).modified; }

}  // namespace

void OpenIniFile() {
    createIfMissing(IniFile);
    NoteIniFileDate();
}

void OpenLanguageFile() {
    const fs::path original = nativePath(ShippedFile("language_original.ini"));
    const fs::path language = nativePath(LangFile);
    // Files of a package may bear older dates than the copy that an earlier version made.
    const std::string version = ProgramVersion(), noted = SettingsStore.GetValue(kTextsVersion);
    const bool fresh = exists(LangFile) && dateOf(original) <= dateOf(language) &&
                       FileLength(LangFile) >= kSmallestLanguageFile && (noted.empty() || noted == version);
    std::string contents;
    if (!fresh && (!readFile(original, contents) || !replaceFile(language, contents))) return;
    if (noted != version) SettingsStore.PutValue(kTextsVersion, version);
}

void OpenAccountFile() {
    if (FileLength(AccountFile) <= 0) replaceFile(nativePath(AccountFile), kEmptyAccount);
}

void OpenPaletteFile() {
    createIfMissing(PalFile);
    PreUpdateCopy("palette");
    RotatingBackup("palette");
}

void OpenPlaylistFile() {
    createIfMissing(PlaylistFile);
    PreUpdateCopy("playlist");
    RotatingBackup("playlist");
}

bool OpenUrlsFile() {
    createIfMissing(UrlsFile, std::string(kDefaultStreamUrl) + "\r\n");
    return dateOf(executableFile()) > dateOf(nativePath(UrlsFile));
}

void OpenDispPresets() { createIfMissing(DispPresetsFile, kDispPresets); }
void OpenVUPresets() { createIfMissing(VUPresetsFile, kVuPresets); }
void OpenFXPresets() { createIfMissing(FXPresetsFile, kFxPresets); }

void OpenHotFile() {
    createIfMissing(HotFile);
    RotatingBackup("HotJingles");
}

void OpenMIDIFile() { createIfMissing(MIDIFile); }

std::string ShippedFile(const std::string& name) {
    std::string own = InProgramFolder(name);
    if (exists(own) || shippedFolder().empty()) return own;
    return RPP(shippedFolder()) + name;
}

void SweepTemporaries() {
    std::error_code error;
    const auto now = fs::file_time_type::clock::now();
    for (fs::directory_iterator it(pathFromUtf8(programFolder()), error), end; !error && it != end;
         it.increment(error)) {
        std::error_code ignored;
        if (it->path().extension() == kTemporaryEnd && it->is_regular_file(ignored) &&
            now - it->last_write_time(ignored) > kStale) {
            fs::remove(it->path(), ignored);
        }
    }
}

}  // namespace zv
