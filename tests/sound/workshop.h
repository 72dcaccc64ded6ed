/// What the sound tests make for themselves: a folder, sounds whose content tells the position, files of all
/// kinds.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <cmath>
#include <random>
#include "engine/bass.h"
#include "engine/ports.h"
#include "platform/file_decoders/file_decoders.h"

namespace zv::test {

/// A folder of the test's own, gone with it.
class Folder {
  public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

/// Runs a shell command; its exit status.
int run(const std::string& command);
/// What a shell command prints.
std::vector<char> outputOf(const std::string& command);

/// Two tones that wander, different left and right and in every second: no stretch of it resembles another,
/// and lossy codecs keep it well.
std::vector<float> wanderingTones(std::uint32_t rate, std::uint32_t channels, std::size_t frames);

/// Writes a 16-bit WAV.
void writeWav(const std::string& path, std::span<const float> sound, std::uint32_t rate,
              std::uint32_t channels);
std::vector<char> readBytes(const std::string& path);
void writeBytes(const std::string& path, std::span<const char> bytes);

/// A tracker module of four channels and one pattern: a looped wave, struck on every eighth row, and after
/// `rows` rows a jump back to the beginning, which would go on for ever.
std::vector<char> tinyModule(int rows);

/// All that a decoder gives from where it stands, in reads of uneven sizes.
std::vector<float> readWhole(engine::Decoder& decoder);

/// By how many frames `sound` comes later than `original` (first channel), as far as `most` either way.
int lagOf(std::span<const float> sound, std::span<const float> original, std::uint32_t channels, int most);

}  // namespace zv::test
