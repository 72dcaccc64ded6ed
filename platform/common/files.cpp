// readFile and replaceFile: the two ways in which whole files come and go.
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <string>
#include <system_error>

#include "platform/paths.h"

#ifdef _WIN32
#include <fstream>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace zv {

namespace fs = std::filesystem;

#ifdef _WIN32

bool readFile(const fs::path& file, std::string& contents) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return false;
    contents.assign(std::istreambuf_iterator<char>(in), {});
    return !in.bad();
}

bool replaceFile(const fs::path& file, std::string_view contents, Flush) {
    fs::path temporary = file;
    temporary += ".zvtmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out.write(contents.data(), static_cast<std::streamsize>(contents.size()));
        out.flush();
        if (!out) return false;
    }
    std::error_code error;
    fs::rename(temporary, file, error);
    return !error;
}

#else

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
        const int fd = fd_;
        fd_ = -1;
        return fd < 0 || ::close(fd) == 0;
    }

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

#endif

}  // namespace zv
