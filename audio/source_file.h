/// A sound file that a worker opens as a decoding source: freed unless somebody takes it.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace zv {

/// Frees a channel of any kind; 0 is none. [any]
void FreeSource(std::uint32_t handle);

class SourceFile {
  public:
    SourceFile() = default;
    SourceFile(std::uint32_t handle, int error) : handle_(handle), error_(error) {}
    SourceFile(SourceFile&& other) noexcept
        : handle_(std::exchange(other.handle_, 0)), error_(other.error_) {}
    SourceFile& operator=(SourceFile&& other) noexcept {
        std::swap(handle_, other.handle_);
        error_ = other.error_;
        return *this;
    }
    ~SourceFile() { FreeSource(handle_); }
    std::uint32_t take() { return std::exchange(handle_, 0); }
    int error() const { return error_; }

  private:
    std::uint32_t handle_ = 0;
    int error_ = 0;
};

/// Opens the file at `path` (as the files of the program have it), as a sound, else as a tracker module. One without a
/// sound holds no handle and the engine's code. [worker]
SourceFile OpenSourceFile(const std::string& path);

}  // namespace zv
