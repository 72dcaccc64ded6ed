#include "startup/errors.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "engine/bass.h"
#include "platform/clock.h"
#include "platform/paths.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/palette_settings.h"
#include "startup/settings/program_settings.h"
#include "startup/stores.h"
#include "startup/upcalls.h"

namespace zv {

bool ErrorLogOn = false;
int ErrBlinkCount = 0;
int ErrOneShot = 0;

namespace {

struct MarkOfMode {
    std::string_view mode;
    char character;
};
/// Characters of the symbol font.
constexpr std::array<MarkOfMode, 5> kMarks{
    {{"save", 'f'}, {"wait", 'h'}, {"ok", '?'}, {"no", 'x'}, {"notification", 'b'}}};

struct CodeName {
    int code;
    const char* key;
};
/// The keys are spelled as the language files spell them, the cut one and the one with a trailing blank
/// included.
constexpr std::array<CodeName, 41> kCodes{{
    {-1, "BASS_ERROR_UNKNOWN"},  {1, "BASS_ERROR_MEM"},       {2, "BASS_ERROR_FILEOPE"},
    {3, "BASS_ERROR_DRIVER"},    {4, "BASS_ERROR_BUFLOST"},   {5, "BASS_ERROR_HANDLE"},
    {6, "BASS_ERROR_FORMAT"},    {7, "BASS_ERROR_POSITION"},  {8, "BASS_ERROR_INIT"},
    {9, "BASS_ERROR_START"},     {10, "BASS_ERROR_SSL"},      {11, "BASS_ERROR_REINIT"},
    {14, "BASS_ERROR_ALREADY"},  {17, "BASS_ERROR_NOTAUDIO"}, {18, "BASS_ERROR_NOCHAN"},
    {19, "BASS_ERROR_ILLTYPE"},  {20, "BASS_ERROR_ILLPARAM"}, {21, "BASS_ERROR_NO3D"},
    {22, "BASS_ERROR_NOEAX"},    {23, "BASS_ERROR_DEVICE"},   {24, "BASS_ERROR_NOPLAY"},
    {25, "BASS_ERROR_FREQ"},     {27, "BASS_ERROR_NOTFILE"},  {29, "BASS_ERROR_NOHW"},
    {31, "BASS_ERROR_EMPTY"},    {32, "BASS_ERROR_NONET"},    {33, "BASS_ERROR_CREATE"},
    {34, "BASS_ERROR_NOFX"},     {37, "BASS_ERROR_NOTAVAIL"}, {38, "BASS_ERROR_DECODE"},
    {39, "BASS_ERROR_DX"},       {40, "BASS_ERROR_TIMEOUT"},  {41, "BASS_ERROR_FILEFORM"},
    {42, "BASS_ERROR_SPEAKER"},  {43, "BASS_ERROR_VERSION"},  {44, "BASS_ERROR_CODEC"},
    {45, "BASS_ERROR_ENDED"},    {46, "BASS_ERROR_BUSY"},     {47, "BASS_ERROR_UNSTREAMABLE "},
    {48, "BASS_ERROR_PROTOCOL"}, {49, "BASS_ERROR_DENIED"},
}};

/// Codes that have a text of their own with the live stream.
constexpr std::array kStreamCodes{20, 2, 32, 40, 41, 5, 6, 1, 21, -1};

constexpr int kErrorFileOpen = 2;

}  // namespace

std::string LogDate() {
    const WallTime t = wallTime();
    char text[32];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", t.year, t.month, t.day);
    return text;
}

std::string LogTime() {
    const WallTime t = wallTime();
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", t.hour, t.minute, t.second);
    return text;
}

void ErrLog(std::string_view source, std::string_view message, bool force) {
    if (!force && !ErrorLogOn) return;
    std::string text = LogDate() + " " + LogTime();
    if (!source.empty()) text.append(" : ").append(source);
    text.append(" : ").append(message).append("\r\n");
    const std::string path = InProgramFolder("Error.log");
    std::string old;
    readFile(nativePath(path), old);
    replaceFile(nativePath(path), text + old, Flush::later);
}

void ErrDisp(std::string_view mode, int blink, std::string_view text) {
    ErrBlinkCount = 0;
    ErrOneShot = blink;
    ErrorMark mark;
    mark.mode = mode;
    mark.visible = mode != "hide";
    mark.blink = blink != 0;
    mark.usesPlayingColor = mode == "wait";
    mark.toolTip = text;
    for (const MarkOfMode& m : kMarks) {
        if (m.mode == mode) mark.character = m.character;
    }
    callUp(startupUpcalls.showErrorMark, mark);
    if (mode == "save" && paletteSettings.AutoSave == 1) callUp(startupUpcalls.startSaveTimer);
}

void Error_(std::string_view message) {
    const int code = BASS_ErrorGetCode();
    if (code == kErrorFileOpen) {
        ErrLog("", message);
    } else {
        ErrLog("Bass, code: " + std::to_string(code), std::string(message) + " ");
    }
    ErrDisp("no", 0, message);
}

void ErrorLive_(std::string_view message) { ErrorLive_(message, BASS_ErrorGetCode()); }

void ErrorLive_(std::string_view message, int code) {
    const bool known = std::find(kStreamCodes.begin(), kStreamCodes.end(), code) != kStreamCodes.end();
    const std::string number = std::to_string(code);
    const std::string text = known ? Ln("mStrEr" + number) : Ln("mStrEr") + number;
    ErrLog("Bass, code: " + number + ": " + text, std::string(message) + ", ");
    callUp(startupUpcalls.showStreamError, text + ": " + std::string(message));
    callUp(startupUpcalls.stopPlayStream);
}

std::string BassErrMessage(int code) {
    const auto found =
        std::find_if(kCodes.begin(), kCodes.end(), [&](const CodeName& c) { return c.code == code; });
    const std::string_view key = found == kCodes.end() ? std::string_view() : std::string_view(found->key);
    const std::string first = LanguageStore.GetValue(key);
    return first.empty() ? first : LanguageStore.GetValue(key, 0, programSettings.Language, first);
}

void ConsoleAdd(std::string_view line, bool clear) {
    if (startupUpcalls.consolePaused && startupUpcalls.consolePaused()) return;
    std::vector<std::string> pieces;
    for (std::string& piece : Split(line, "\n")) {
        if (piece.ends_with('\r')) piece.pop_back();
        pieces.push_back(std::move(piece));
    }
    callUp(startupUpcalls.consoleLines, pieces, clear);
}

}  // namespace zv
