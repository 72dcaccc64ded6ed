/// Sounds that tests make, and what an output sent.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace zv::test {

inline constexpr std::uint32_t kRate = 44100;
inline constexpr int kBytesPerFrame = 4;  ///< of positions in a stereo file
inline constexpr double kBytesPerMs = kRate * kBytesPerFrame / 1000.0;

/// Writes 16-bit PCM; `samples` are interleaved, full scale is 32767.
void writeWav(const std::filesystem::path& file, std::span<const std::int16_t> samples,
              std::uint32_t rate = kRate, std::uint16_t channels = 2);
/// Stereo of one value: what comes out is the gain.
std::vector<std::int16_t> level(std::size_t frames, std::int16_t value = 16384);
std::vector<std::int16_t> sine(std::size_t frames, double hz, double amplitude = 0.5);

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

}  // namespace zv::test
