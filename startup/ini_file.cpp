#include "startup/ini_file.h"

#include <chrono>
#include <cstdlib>
#include <map>
#include <mutex>

#include "platform/paths.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

/// The times of files stand on a coarse tick: a file as young as this may change again without its time
/// moving.
constexpr std::int64_t kTickNs = 20'000'000;
/// More than any file of ours; a larger one is not ours to read into memory.
constexpr std::uint64_t kLargestFile = 512U << 20;

std::int64_t nowNs() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

}  // namespace

std::shared_ptr<StoredIni> StoredIni::at(std::string_view path) {
    static std::map<fs::path, std::weak_ptr<StoredIni>> files;
    static std::mutex mutex;
    fs::path native = nativePath(path);
    std::lock_guard lock(mutex);
    if (std::shared_ptr<StoredIni> known = files[native].lock()) return known;
    std::erase_if(files, [](const auto& entry) { return entry.second.expired(); });
    auto file = std::make_shared<StoredIni>(native);
    files[std::move(native)] = file;
    return file;
}

void StoredIni::forget() {
    loaded_ = false;
    known_ = {};
}

void StoredIni::refresh() {
    const FileState now = fileState(path_);
    if (loaded_ && now == known_ && settled_) return;
    std::string bytes;
    usable_ = !now.exists || (now.size <= kLargestFile && readFile(path_, bytes));
    settled_ = !now.exists || std::llabs(nowNs() - now.modified) > kTickNs;
    away_ = keepWhenAway_ && had_ && bytes.empty();
    if (!away_) {
        had_ = !bytes.empty();
        if (!loaded_ || bytes != text_.bytes()) text_.assign(std::move(bytes));
    }
    known_ = now;
    loaded_ = true;
}

IniText& StoredIni::text() {
    refresh();
    return text_;
}

bool StoredIni::write() {
    if (!replaceFile(path_, text_.bytes())) {
        forget();
        return false;
    }
    // Our own writes bear a time of the fine clock, which no later change can repeat.
    known_ = fileState(path_);
    settled_ = true;
    away_ = false;
    had_ = !text_.bytes().empty();
    return true;
}

}  // namespace zv
