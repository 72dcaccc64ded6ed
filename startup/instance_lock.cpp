#include "startup/instance_lock.h"

#include <cerrno>
#include <filesystem>

#include "platform/paths.h"
#include "startup/errors.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace zv {

InstanceLock::~InstanceLock() { release(); }

#ifdef _WIN32

InstanceLock::Result InstanceLock::acquire(const std::string&) { return Result::unknown; }
void InstanceLock::release() { descriptor_ = -1; }

#else

InstanceLock::Result InstanceLock::acquire(const std::string& folder) {
    if (held()) return Result::alone;
    const std::filesystem::path file = std::filesystem::path(folder) / kLockFileName;
    // The file stays for ever; it is the system's lock on it that counts, and that ends with the process.
    const int fd = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) return Result::unknown;
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        const bool taken = errno == EWOULDBLOCK;
        ::close(fd);
        if (taken) readFile(file, other_);
        return taken ? Result::shared : Result::unknown;
    }
    descriptor_ = fd;
    other_.clear();
    const std::string text =
        "process " + std::to_string(::getpid()) + " since " + LogDate() + " " + LogTime();
    if (::ftruncate(fd, 0) != 0 || ::pwrite(fd, text.data(), text.size(), 0) < 0)
        other_.clear();  // only a courtesy
    return Result::alone;
}

void InstanceLock::release() {
    if (!held()) return;
    ::close(descriptor_);
    descriptor_ = -1;
}

#endif

}  // namespace zv
