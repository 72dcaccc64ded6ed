#include "model/history.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/files.h"
#include "platform/paths.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/stores.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFolder = "History";
constexpr const char* kHead = "History";   ///< section of an entry that says what it is
constexpr const char* kLines = "Palette";  ///< section that holds a palette's lines
constexpr std::array<const char*, 5> kReasons{"unsaved", "saved", "replaced", "moved", "deleted"};

/// Entries that could not be written yet, oldest first.
std::vector<HistoryEntry> waiting;

fs::path folder() { return nativePath(InProgramFolder(kFolder)); }

std::string numberText(int number) {
    char text[16];
    std::snprintf(text, sizeof text, "%08d", number);
    return text;
}

fs::path fileOf(int number) { return folder() / (numberText(number) + ".ini"); }

/// Number of an entry's file, -1 for any other file.
int numberOf(const fs::path& file) {
    const std::string stem = file.stem().string();
    const bool digits = !stem.empty() && stem.find_first_not_of("0123456789") == std::string::npos;
    return file.extension() == ".ini" && digits && stem.size() < 10 ? std::stoi(stem) : -1;
}

/// Numbers of the entries on disk, rising.
std::vector<int> numbersOnDisk() {
    std::vector<int> numbers;
    std::error_code error;
    for (fs::directory_iterator it(folder(), error), end; !error && it != end; it.increment(error))
        if (const int number = numberOf(it->path()); number >= 0) numbers.push_back(number);
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

int nextNumber() {
    const std::vector<int> numbers = numbersOnDisk();
    const int onDisk = numbers.empty() ? 0 : numbers.back();
    return std::max(onDisk, waiting.empty() ? 0 : waiting.back().number) + 1;
}

HistoryEntry read(int number) {
    cImpulse store;
    store.SetIniPath(utf8FromPath(fileOf(number)));
    store.SetSection(kHead);
    HistoryEntry entry;
    entry.number = number;
    entry.date = store.GetValue("Date");
    entry.name = store.GetValue("Name");
    entry.data = store.GetValue("Data");
    entry.hot = store.GetValue("Hot") == "1";
    const auto reason = std::find(kReasons.begin(), kReasons.end(), store.GetValue("Reason"));
    if (reason != kReasons.end()) entry.reason = static_cast<HistoryReason>(reason - kReasons.begin());
    entry.lines = store.GetSectionLines(kLines);
    return entry;
}

bool write(const HistoryEntry& entry) {
    std::error_code error;
    fs::create_directories(folder(), error);
    std::string text = "[" + std::string(kHead) + "]\r\nDate=" + entry.date + "\r\nName=" + entry.name +
                       "\r\nReason=" + kReasons[static_cast<std::size_t>(entry.reason)] + "\r\n";
    if (entry.hot) text += "Hot=1\r\n";
    if (entry.isFile()) text += "Data=" + entry.data + "\r\n";
    text += std::string("[") + kLines + "]\r\n";
    for (const auto& [key, value] : entry.lines) text.append(key).append("=").append(value).append("\r\n");
    // Not flushed to the disk: a save must not wait for its copy.
    return replaceFile(fileOf(entry.number), text, Flush::later);
}

void erase(int number) {
    std::error_code error;
    const std::string data = read(number).data;
    if (!data.empty()) fs::remove(folder() / pathFromUtf8(data), error);
    fs::remove(fileOf(number), error);
}

void trim() {
    std::vector<int> numbers = numbersOnDisk();
    std::error_code error;
    std::uint64_t bytes = 0;
    for (fs::directory_iterator it(folder(), error), end; !error && it != end; it.increment(error)) {
        std::error_code ignored;
        if (const auto size = it->file_size(ignored); !ignored) bytes += size;
    }
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (numbers.size() - i <= kHistoryEntries && bytes <= kHistoryBytes) return;
        const std::string data = read(numbers[i]).data;
        for (const fs::path& file : {fileOf(numbers[i]), folder() / pathFromUtf8(data)}) {
            std::error_code ignored;
            const auto size = fs::is_regular_file(file, ignored) ? fs::file_size(file, ignored) : 0;
            bytes -= std::min<std::uint64_t>(bytes, ignored ? 0 : size);
        }
        erase(numbers[i]);
    }
}

void writeWaiting() {
    while (!waiting.empty() && write(waiting.front())) waiting.erase(waiting.begin());
    if (waiting.size() > kHistoryEntries) waiting.erase(waiting.begin());
    trim();
}

HistoryEntry entryOf(HistoryReason reason, const std::string& name) {
    HistoryEntry entry;
    entry.number = nextNumber();
    entry.date = LogDate() + " " + LogTime();
    entry.name = name;
    entry.reason = reason;
    return entry;
}

/// Name of a sound file's copy: found by its number, known by its own name.
std::string dataName(const HistoryEntry& entry, const std::string& path) {
    return numberText(entry.number) + " " + GetFileName(path);
}

enum class Take : std::uint8_t { move, link };

/// The file's bytes under the entry's name in the folder, without a copy where the disk is the same.
bool take(const fs::path& from, const fs::path& to, Take how) {
    std::error_code error;
    fs::create_directories(folder(), error);
    error.clear();
    if (how == Take::link) {
        fs::create_hard_link(from, to, error);
    } else {
        fs::rename(from, to, error);
    }
    if (!error) return true;
    error.clear();
    const bool copied = fs::copy_file(from, to, error) && !error;
    if (copied && how == Take::move) fs::remove(from, error);
    if (!copied) {
        std::error_code ignored;
        fs::remove(to, ignored);
    }
    return copied;
}

bool keepFile(HistoryReason reason, const std::string& path, Take how) {
    HistoryEntry entry = entryOf(reason, GetRelPath(path));
    entry.data = dataName(entry, path);
    if (!take(nativePath(GetFullPath(path)), folder() / pathFromUtf8(entry.data), how)) return false;
    waiting.push_back(std::move(entry));
    writeWaiting();
    return true;
}

}  // namespace

void KeepSection(HistoryReason reason, const std::string& name, const std::vector<cImpulse::Line>& lines,
                 bool hot) {
    guarded("modMain.KeepSection", [&] {
        if (lines.empty()) return;
        const auto same = [&](const HistoryEntry& e) {
            return SameText(e.name, name) && e.hot == hot && e.lines == lines;
        };
        if (!waiting.empty()) {
            if (same(waiting.back())) return;
        } else if (const auto numbers = numbersOnDisk(); !numbers.empty() && same(read(numbers.back()))) {
            return;
        }
        HistoryEntry entry = entryOf(reason, name);
        entry.lines = lines;
        entry.hot = hot;
        waiting.push_back(std::move(entry));
        writeWaiting();
    });
}

bool KeepDeletedFile(const std::string& path) {
    return guardedOr("modMain.KeepDeletedFile", false,
                     [&] { return keepFile(HistoryReason::deleted, path, Take::move); });
}

void KeepReplacedFile(const std::string& path) {
    guarded("modMain.KeepReplacedFile", [&] {
        if (FileExists(path)) keepFile(HistoryReason::replaced, path, Take::link);
    });
}

std::vector<HistoryEntry> HistoryEntries() {
    std::vector<HistoryEntry> entries;
    for (const int number : numbersOnDisk()) entries.push_back(read(number));
    entries.insert(entries.end(), waiting.begin(), waiting.end());
    std::reverse(entries.begin(), entries.end());
    return entries;
}

bool BringFileBack(const HistoryEntry& entry) {
    return guardedOr("modMain.BringFileBack", false, [&] {
        const std::string path = GetFullPath(entry.name);
        const fs::path to = nativePath(path);
        MkDirs(GetPath(path));
        // The entry's file is moved last: until then it is in one place or the other.
        if (FileExists(path)) {
            KeepReplacedFile(path);
            std::error_code error;
            fs::remove(to, error);
        }
        if (!take(folder() / pathFromUtf8(entry.data), to, Take::move)) return false;
        erase(entry.number);
        return true;
    });
}

}  // namespace zv
