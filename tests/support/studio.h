/// A studio for the tests: a program folder of its own, the engine on offline devices, time that renders
/// sound.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "engine/bass.h"
#include "platform/offline/offline_devices.h"

namespace zv::test {

inline constexpr std::uint32_t kRate = 44100;
inline constexpr int kBytesPerFrame = 4;  ///< of positions in a stereo file
inline constexpr double kBytesPerMs = kRate * kBytesPerFrame / 1000.0;

/// Writes 16-bit PCM; `samples` are interleaved, full scale is 32767.
void writeWav(const std::filesystem::path& file, std::span<const std::int16_t> samples,
              std::uint32_t rate = kRate, std::uint16_t channels = 2);
/// Stereo whose samples are their own position: left and right of frame n are n + 1 (wraps at 32767).
std::vector<std::int16_t> ramp(std::size_t frames);
/// Stereo of one value: what comes out is the gain.
std::vector<std::int16_t> level(std::size_t frames, std::int16_t value = 16384);
std::vector<std::int16_t> sine(std::size_t frames, double hz, double amplitude = 0.5);

/// "FadeOut=200 StopPos=500" as lines of a palette for slot `number`; positions stand in ms and become bytes.
std::string paletteLines(const std::string& keys, int number);

/// What an output sent, interleaved stereo.
struct Heard {
    std::vector<float> stereo;
    std::size_t frames() const { return stereo.size() / 2; }
    float at(std::size_t frame) const { return stereo[frame * 2]; }
    /// First frame at or behind `from` that is louder than `floor`; frames() when there is none.
    std::size_t firstSound(std::size_t from = 0, float floor = 1e-6F) const;
    /// One behind the last frame louder than `floor`; 0 when there is none.
    std::size_t end(float floor = 1e-6F) const;
    float loudest(std::size_t from, std::size_t to) const;
    bool silent(std::size_t from, std::size_t to) const { return loudest(from, to) < 1e-6F; }
};

/// A folder of its own, gone afterwards.
struct FolderGuard {
    FolderGuard();
    ~FolderGuard();
    FolderGuard(const FolderGuard&) = delete;
    FolderGuard& operator=(const FolderGuard&) = delete;
    std::filesystem::path path;
};

/// A program folder with all stores on it and the settings at their defaults; gone afterwards.
class FolderTest : public ::testing::Test {
  protected:
    FolderTest();
    ~FolderTest() override;

    std::filesystem::path path(const std::string& name) const { return folder / name; }
    void write(const std::string& name, const std::string& bytes) const;
    std::string read(const std::string& name) const;

    const FolderGuard own;
    const std::filesystem::path& folder = own.path;
    std::vector<std::string> marks;    ///< ErrDisp: mode, and ": " text when there is one
    std::vector<std::string> reports;  ///< titles of the error reports
};

/// The same with sound. The mix topology is up when the test begins.
class StudioTest : public FolderTest {
  protected:
    explicit StudioTest(OfflineOptions options = {});
    ~StudioTest() override;

    /// Time goes on; timers that fall due fire.
    void pass(int ms);
    /// Performs "0 press 200 press": a number is a time from now in ms, each word behind it goes to `act`.
    void perform(const std::string& acts, const std::function<void(const std::string& word)>& act);
    /// What output 0 (main) or 1 (auxiliary) sent since it was last asked.
    Heard heard(int output = 0);

    std::shared_ptr<OfflineDevices> devices;
    OfflineOptions options;
};

}  // namespace zv::test
