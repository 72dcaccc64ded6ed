/// Notices a second program on the same folder. [control]
#pragma once

#include <string>

namespace zv {

/// Held while the program runs. The system lets go of it when the program ends, however it ends, so a crash
/// blocks nobody.
class InstanceLock {
  public:
    InstanceLock() = default;
    ~InstanceLock();
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

    enum class Result {
        alone,    ///< the lock is ours
        shared,   ///< another program works on this folder; nothing is held
        unknown,  ///< the lock file cannot be made (a folder that cannot be written): nothing is known
    };
    /// Tries to lock `folder`; may be called again.
    Result acquire(const std::string& folder);
    bool held() const { return descriptor_ >= 0; }
    void release();
    /// What the other program wrote about itself ("process 1234 since 14:05:09"); may be empty.
    const std::string& other() const { return other_; }

  private:
    int descriptor_ = -1;
    std::string other_;
};

/// The name of the lock file in the program folder.
inline constexpr const char* kLockFileName = ".zentrova.lock";

}  // namespace zv
