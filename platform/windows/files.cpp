#include "platform/files.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <utility>

namespace zv {

namespace fs = std::filesystem;

namespace {

/// From the system's ticks of 100 ns since 1601 to ns since 1970.
constexpr std::int64_t kTicksTo1970 = 116'444'736'000'000'000;
constexpr std::int64_t kNsPerTick = 100;
/// A virus scanner or an indexer looks at a fresh file for a moment.
constexpr int kRenameAttempts = 10;
constexpr DWORD kRenamePauseMs = 20;
/// Where the lock lies: behind everything that is read.
constexpr DWORD kLockOffset = 0x4000'0000;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class Handle {
  public:
    explicit Handle(HANDLE handle) : handle_(handle) {}
    ~Handle() { close(); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    HANDLE get() const { return handle_; }
    bool there() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE release() { return std::exchange(handle_, INVALID_HANDLE_VALUE); }
    bool close() { return !there() || CloseHandle(release()) != 0; }

  private:
    HANDLE handle_;
};

HANDLE open(const fs::path& file, DWORD access, DWORD disposition, DWORD attributes = FILE_ATTRIBUTE_NORMAL) {
    return CreateFileW(file.c_str(), access, kShareAll, nullptr, disposition, attributes, nullptr);
}

bool writeAll(HANDLE file, std::string_view contents) {
    while (!contents.empty()) {
        constexpr std::size_t kMost = 1 << 20;
        const auto wanted = static_cast<DWORD>(std::min(contents.size(), kMost));
        DWORD written = 0;
        if (!WriteFile(file, contents.data(), wanted, &written, nullptr) || written == 0) return false;
        contents.remove_prefix(written);
    }
    return true;
}

std::int64_t nsOf(const FILETIME& time) {
    const auto ticks = static_cast<std::int64_t>((static_cast<std::uint64_t>(time.dwHighDateTime) << 32) |
                                                 time.dwLowDateTime);
    return (ticks - kTicksTo1970) * kNsPerTick;
}

/// A temporary file of its own name beside `file`.
HANDLE openTemporary(const fs::path& file, fs::path& name) {
    static std::atomic<unsigned> counter{0};
    HANDLE handle = INVALID_HANDLE_VALUE;
    for (int attempt = 0; attempt < 100; ++attempt) {
        name = file;
        name += "." + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++counter) + ".zvtmp";
        handle = open(name, GENERIC_WRITE | FILE_WRITE_ATTRIBUTES, CREATE_NEW);
        if (handle != INVALID_HANDLE_VALUE || GetLastError() != ERROR_FILE_EXISTS) break;
    }
    return handle;
}

bool rename(const fs::path& from, const fs::path& to, DWORD flags) {
    for (int attempt = 0; attempt < kRenameAttempts; ++attempt) {
        if (MoveFileExW(from.c_str(), to.c_str(), flags)) return true;
        const DWORD error = GetLastError();
        if (error != ERROR_SHARING_VIOLATION && error != ERROR_ACCESS_DENIED) return false;
        Sleep(kRenamePauseMs);
    }
    return false;
}

}  // namespace

bool readFile(const fs::path& file, std::string& contents) {
    Handle in(open(file, GENERIC_READ, OPEN_EXISTING));
    LARGE_INTEGER size{};
    if (!in.there() || GetFileType(in.get()) != FILE_TYPE_DISK || !GetFileSizeEx(in.get(), &size))
        return false;
    std::string text(static_cast<std::size_t>(size.QuadPart) + 1,
                     '\0');  // one more: notices a file that grows
    std::size_t have = 0;
    for (;;) {
        if (have == text.size()) text.resize(have + 65536);
        DWORD got = 0;
        const auto room = static_cast<DWORD>(std::min<std::size_t>(text.size() - have, 1 << 20));
        if (!ReadFile(in.get(), text.data() + have, room, &got, nullptr)) return false;
        if (got == 0) break;
        have += got;
    }
    text.resize(have);
    contents.swap(text);
    return true;
}

bool replaceFile(const fs::path& file, std::string_view contents, Flush flush) {
    const DWORD old = GetFileAttributesW(file.c_str());
    const bool exists = old != INVALID_FILE_ATTRIBUTES;
    if (exists && (old & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0) return false;
    fs::path temporary;
    Handle out(openTemporary(file, temporary));
    if (!out.there()) return false;
    bool good = writeAll(out.get(), contents);
    // Times that the system gives stand on its coarse tick; a change by someone else shall show in the time.
    FILETIME now{};
    GetSystemTimePreciseAsFileTime(&now);
    SetFileTime(out.get(), nullptr, nullptr, &now);
    if (flush == Flush::now) good = good && FlushFileBuffers(out.get()) != 0;
    good = out.close() && good;
    if (good && exists) SetFileAttributesW(temporary.c_str(), old);
    const DWORD through = flush == Flush::now ? MOVEFILE_WRITE_THROUGH : 0;
    good = good && rename(temporary, file, MOVEFILE_REPLACE_EXISTING | through);
    if (!good) DeleteFileW(temporary.c_str());
    return good;
}

FileState fileState(const fs::path& file) {
    FileState state;
    // Folders have a state as well; attributes alone are asked for, which no other program can forbid.
    Handle opened(open(file, FILE_READ_ATTRIBUTES, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS));
    BY_HANDLE_FILE_INFORMATION info{};
    if (!opened.there() || !GetFileInformationByHandle(opened.get(), &info)) return state;
    state.exists = true;
    state.device = info.dwVolumeSerialNumber;
    state.inode = (static_cast<std::uint64_t>(info.nFileIndexHigh) << 32) | info.nFileIndexLow;
    state.size = (static_cast<std::uint64_t>(info.nFileSizeHigh) << 32) | info.nFileSizeLow;
    state.modified = nsOf(info.ftLastWriteTime);
    FILE_BASIC_INFO basic{};
    if (GetFileInformationByHandleEx(opened.get(), FileBasicInfo, &basic, sizeof basic))
        state.changed = (basic.ChangeTime.QuadPart - kTicksTo1970) * kNsPerTick;
    return state;
}

FileLock::Result FileLock::acquire(const fs::path& file) {
    if (held()) return Result::held;
    Handle opened(open(file, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS));
    if (!opened.there()) return Result::failed;
    OVERLAPPED place{};
    place.Offset = kLockOffset;
    if (!LockFileEx(opened.get(), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place)) {
        const DWORD error = GetLastError();
        return error == ERROR_LOCK_VIOLATION || error == ERROR_IO_PENDING ? Result::taken : Result::failed;
    }
    handle_ = reinterpret_cast<std::intptr_t>(opened.release());
    return Result::held;
}

void FileLock::write(std::string_view text) {
    const HANDLE file = reinterpret_cast<HANDLE>(handle_);
    if (held() && SetFilePointer(file, 0, nullptr, FILE_BEGIN) == 0 && SetEndOfFile(file))
        writeAll(file, text);
}

void FileLock::release() {
    if (held()) CloseHandle(reinterpret_cast<HANDLE>(handle_));
    handle_ = kNone;
}

std::int64_t processNumber() { return static_cast<std::int64_t>(GetCurrentProcessId()); }

fs::path executableFile() {
    std::wstring name(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
        if (length == 0) return {};
        if (length < name.size()) return name.substr(0, length);
        name.resize(name.size() * 2);
    }
}

}  // namespace zv
