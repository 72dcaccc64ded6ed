#include "startup/instance_lock.h"

#include "platform/paths.h"
#include "startup/errors.h"

namespace zv {

InstanceLock::Result InstanceLock::acquire(const std::string& folder) {
    if (held()) return Result::alone;
    const std::filesystem::path file = pathFromUtf8(folder) / kLockFileName;
    switch (lock_.acquire(file)) {
        case FileLock::Result::failed:
            return Result::unknown;
        case FileLock::Result::taken:
            readFile(file, other_);
            return Result::shared;
        case FileLock::Result::held:
            break;
    }
    other_.clear();
    lock_.write("process " + std::to_string(processNumber()) + " since " + LogDate() + " " + LogTime());
    return Result::alone;
}

}  // namespace zv
