/// How whole files come and go, how one state of a file is told from another, and locks on files. Answered by
/// platform/posix and platform/windows. No errors but those returned. [any]
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace zv {

enum class Flush { now, later };
/// Replaces `file` by `contents`: a temporary file beside it, flushed to disk, renamed over it; permissions and links
/// are kept. `Flush::later` leaves the flushing to the system, for logs: a power cut may lose the last lines. False
/// (and nothing changed) when it cannot: a file that may not be written, or one that another program keeps open for
/// itself.
bool replaceFile(const std::filesystem::path& file, std::string_view contents, Flush flush = Flush::now);
/// The whole file; false when it cannot be opened.
bool readFile(const std::filesystem::path& file, std::string& contents);

/// What tells one state of a file from another without reading it.
struct FileState {
    bool exists = false;
    std::uint64_t device = 0, inode = 0, size = 0;
    std::int64_t modified = 0,
                 changed = 0;  ///< ns since 1970; `changed` also moves with name and permissions
    bool operator==(const FileState&) const = default;
};
FileState fileState(const std::filesystem::path& file);

/// A lock on a file. The system lets go of it when the process ends, however it ends. The file itself stays.
class FileLock {
  public:
    enum class Result {
        held,    ///< the lock is ours
        taken,   ///< another holder has it
        failed,  ///< the file cannot be made or opened
    };
    FileLock() = default;
    ~FileLock() { release(); }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// Tries to lock `file`, which is made when it is missing; waits for nobody.
    Result acquire(const std::filesystem::path& file);
    /// While held: makes `text` what others read in the file. A courtesy, no error.
    void write(std::string_view text);
    bool held() const { return handle_ != kNone; }
    void release();

  private:
    static constexpr std::intptr_t kNone = -1;
    std::intptr_t handle_ = kNone;
};

/// The number of this process, as the system's list of processes shows it.
std::int64_t processNumber();
/// The file that this process runs; empty when the system does not tell.
std::filesystem::path executableFile();

}  // namespace zv
