/// Notices a second program on the same folder. [control]
#pragma once

#include <string>

#include "platform/files.h"

namespace zv {

/// Held while the program runs. The system lets go of it when the program ends, however it ends, so a crash
/// blocks no other program.
class InstanceLock {
  public:
    enum class Result {
        alone,    ///< the lock is ours
        shared,   ///< another program works on this folder; nothing is held
        unknown,  ///< the lock file cannot be made (a folder that cannot be written): nothing is known
    };
    /// Tries to lock `folder`; may be called again.
    Result acquire(const std::string& folder);
    bool held() const { return lock_.held(); }
    void release() { lock_.release(); }
    /// What the other program wrote about itself ("process 1234 since 14:05:09"); may be empty.
    const std::string& other() const { return other_; }

  private:
    FileLock lock_;
    std::string other_;
};

/// The name of the lock file in the program folder.
inline constexpr const char* kLockFileName = ".zentrova.lock";

}  // namespace zv
