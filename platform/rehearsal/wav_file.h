/// Writes 32-bit float stereo as a WAV file, piece by piece.
#pragma once

#include <cstdint>
#include <fstream>
#include <span>
#include <string>

namespace zv {

class WavFile {
  public:
    /// False when the file cannot be made.
    bool open(const std::string& path, std::uint32_t rate);
    /// Interleaved stereo.
    void write(std::span<const float> stereo);
    void writeSilence(std::uint64_t frames);
    std::uint64_t frames() const { return frames_; }
    /// Puts the sizes into the header and closes. False when something could not be written.
    bool close();

  private:
    std::ofstream file_;
    std::uint64_t frames_ = 0;
};

}  // namespace zv
