/// A program folder of a test's own, performances on it, and what they left.
#pragma once

#include <gtest/gtest.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>
#include "tests/support/places.h"

namespace zv::test {

/// Interleaved stereo at 44,100 Hz.
struct Sound {
    std::vector<float> samples;
    std::size_t frames() const { return samples.size() / 2; }
    float left(std::size_t frame) const { return samples[frame * 2]; }
    float right(std::size_t frame) const { return samples[frame * 2 + 1]; }
};

inline constexpr std::size_t kRate = 44100;
inline std::size_t framesOf(double ms) { return static_cast<std::size_t>(ms * kRate / 1000 + 0.5); }

class Show {
  public:
    /// An empty program folder; both outputs are in use.
    Show();
    ~Show();

    /// A file in the program folder.
    void write(const std::string& name, const std::string& contents);
    /// A tone of `hertz` at `level` from its first frame to its last, 16 bit, in Audio_Sample.
    void tone(const std::string& name, double seconds, double hertz = 1000, double level = 0.5);
    /// A file of Audio_Sample in another format, by the ffmpeg command.
    void convert(const std::string& from, const std::string& to, const std::string& options = {});
    /// Performs the script; returns the exit status. `arguments` are added to the command.
    int perform(const std::string& script, const std::string& arguments = {});

    std::filesystem::path home() const { return folder_ / "home"; }
    std::filesystem::path out() const { return folder_ / "out"; }
    /// What was told on standard error.
    std::string messages() const;
    std::string result(const std::string& file) const;
    Sound heard(const std::string& file = "main.wav") const;

  private:
    std::filesystem::path folder_;
};

/// A whole file, empty when it cannot be read.
std::string contents(const std::filesystem::path& file);
/// A sound file decoded as the program does; modules too.
Sound decoded(const std::filesystem::path& file);
/// First frame from `from` on that is louder than `threshold`; the length when there is none.
std::size_t firstSound(const Sound& sound, std::size_t from, float threshold = 1e-4F);
/// Loudest sample in a stretch.
float peak(const Sound& sound, std::size_t from, std::size_t to);
/// Frames from `from` on in which both sounds have the same bits, up to `count`.
std::size_t sameBits(const Sound& a, std::size_t from, const Sound& b, std::size_t offset, std::size_t count);

}  // namespace zv::test
