#include "platform/files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <string>
#include <system_error>
#include <utility>

#include "platform/paths.h"

namespace zv {

namespace fs = std::filesystem;

namespace {

constexpr mode_t kNewFileMode = 0644;
constexpr mode_t kAnyWrite = 0222;
constexpr mode_t kPermissions = 07777;

class Descriptor {
  public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }
    bool close() {
        const int fd = release();
        return fd < 0 || ::close(fd) == 0;
    }
    int release() { return std::exchange(fd_, -1); }

  private:
    int fd_;
};

bool writeAll(int fd, std::string_view contents) {
    while (!contents.empty()) {
        const ssize_t n = ::write(fd, contents.data(), contents.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        contents.remove_prefix(static_cast<std::size_t>(n));
    }
    return true;
}

/// The file itself where `file` is a link to it, so that the link survives the rename.
fs::path behindLinks(const fs::path& file) {
    std::error_code error;
    if (!fs::is_symlink(file, error)) return file;
    fs::path real = fs::weakly_canonical(file, error);
    return error ? file : real;
}

/// A temporary file of its own name beside `file`; -1 when none can be made.
int openTemporary(const fs::path& file, std::string& name) {
    static std::atomic<unsigned> counter{0};
    for (int attempt = 0; attempt < 100; ++attempt) {
        name = file.native() + "." + std::to_string(::getpid()) + "-" + std::to_string(++counter) + ".zvtmp";
        const int fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode);
        if (fd >= 0 || errno != EEXIST) return fd;
    }
    return -1;
}

/// Gives the file a time of the fine clock. Times that the system gives stand on its coarse tick, so a change
/// by someone else shows in the time even when it follows within the same tick.
bool stampFinely(int fd) {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    if (now.tv_nsec % 1000 == 0) ++now.tv_nsec;
    const timespec times[2] = {now, now};
    return ::futimens(fd, times) == 0;
}

}  // namespace

bool readFile(const fs::path& file, std::string& contents) {
    // Not to be held up by a pipe under a file's name.
    Descriptor in(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    if (in.get() < 0 || ::fstat(in.get(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
    std::string text;
    text.resize(static_cast<std::size_t>(info.st_size));
    std::size_t have = 0;
    for (;;) {
        if (have == text.size()) text.resize(have + 1);  // one more than expected: notices a file that grows
        const ssize_t n = ::read(in.get(), text.data() + have, text.size() - have);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return false;
        if (n == 0) break;
        have += static_cast<std::size_t>(n);
        if (have == text.size()) text.resize(have + 65536);
    }
    text.resize(have);
    contents.swap(text);
    return true;
}

bool replaceFile(const fs::path& wanted, std::string_view contents, Flush flush) {
    // A drive or a server of another system would become a file of that name in the current folder.
    if (isAbsolutePath(wanted.native()) && !wanted.is_absolute()) return false;
    const fs::path file = behindLinks(wanted);
    struct stat old {};
    const bool exists = ::stat(file.c_str(), &old) == 0;
    if (exists && (!S_ISREG(old.st_mode) || (old.st_mode & kAnyWrite) == 0)) return false;
    std::string temporary;
    Descriptor out(openTemporary(file, temporary));
    if (out.get() < 0) return false;
    bool good = writeAll(out.get(), contents);
    if (good && exists) good = ::fchmod(out.get(), old.st_mode & kPermissions) == 0;
    if (good) stampFinely(out.get());
    if (flush == Flush::now) good = good && ::fsync(out.get()) == 0;
    good = out.close() && good;
    good = good && ::rename(temporary.c_str(), file.c_str()) == 0;
    if (!good) ::unlink(temporary.c_str());
    return good;
}

FileState fileState(const fs::path& file) {
    const auto ns = [](const timespec& t) { return t.tv_sec * 1'000'000'000LL + t.tv_nsec; };
    struct stat info {};
    FileState state;
    if (::stat(file.c_str(), &info) != 0) return state;
    state.exists = true;
    state.device = info.st_dev;
    state.inode = info.st_ino;
    state.size = static_cast<std::uint64_t>(info.st_size);
    state.modified = ns(info.st_mtim);
    state.changed = ns(info.st_ctim);
    return state;
}

FileLock::Result FileLock::acquire(const fs::path& file) {
    if (held()) return Result::held;
    Descriptor opened(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kNewFileMode));
    if (opened.get() < 0) return Result::failed;
    if (::flock(opened.get(), LOCK_EX | LOCK_NB) != 0)
        return errno == EWOULDBLOCK ? Result::taken : Result::failed;
    handle_ = opened.release();
    return Result::held;
}

void FileLock::write(std::string_view text) {
    const int fd = static_cast<int>(handle_);
    if (held() && ::ftruncate(fd, 0) == 0 && ::lseek(fd, 0, SEEK_SET) == 0) writeAll(fd, text);
}

void FileLock::release() {
    if (held()) ::close(static_cast<int>(handle_));
    handle_ = kNone;
}

std::int64_t processNumber() { return ::getpid(); }

fs::path executableFile() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error);
}

}  // namespace zv
