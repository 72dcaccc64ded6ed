#include "tests/support/sound.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <fstream>
#include <map>
#include <numbers>
#include <string>
#include <utility>

namespace zv::test {
namespace {

void put(std::string& bytes, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
}

}  // namespace

void writeWav(const std::filesystem::path& file, std::span<const std::int16_t> samples, std::uint32_t rate,
              std::uint16_t channels) {
    constexpr std::uint32_t bytesPerSample = 2;
    const auto size = static_cast<std::uint32_t>(samples.size() * bytesPerSample);
    std::string bytes = "RIFF";
    put(bytes, 36 + size, 4);
    bytes += "WAVEfmt ";
    put(bytes, 16, 4);
    put(bytes, 1, 2);  // PCM
    put(bytes, channels, 2);
    put(bytes, rate, 4);
    put(bytes, rate * channels * bytesPerSample, 4);
    put(bytes, channels * bytesPerSample, 2);
    put(bytes, 8 * bytesPerSample, 2);
    bytes += "data";
    put(bytes, size, 4);
    static_assert(std::endian::native == std::endian::little);
    bytes.append(reinterpret_cast<const char*>(samples.data()), size);
    std::filesystem::create_directories(file.parent_path());
    std::filesystem::remove(file);  // what is linked to it stays
    std::ofstream(file, std::ios::binary) << bytes;
}

std::vector<std::int16_t> level(std::size_t frames, std::int16_t value) {
    return std::vector<std::int16_t>(frames * 2, value);
}

std::vector<std::int16_t> sine(std::size_t frames, double hz, double amplitude) {
    static std::map<std::pair<double, double>, std::vector<std::int16_t>> made;  // the longest of each so far
    std::vector<std::int16_t>& samples = made[{hz, amplitude}];
    for (std::size_t i = samples.size() / 2; i < frames; ++i)
        samples.insert(
            samples.end(), 2,
            static_cast<std::int16_t>(std::lround(
                32767 * amplitude * std::sin(2 * std::numbers::pi * hz * static_cast<double>(i) / kRate))));
    return {samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(2 * frames)};
}

std::size_t Heard::firstSound(std::size_t from, float floor) const {
    for (std::size_t i = from; i < frames(); ++i)
        if (std::abs(stereo[2 * i]) > floor || std::abs(stereo[2 * i + 1]) > floor) return i;
    return frames();
}

std::size_t Heard::end(float floor) const {
    for (std::size_t i = frames(); i > 0; --i)
        if (std::abs(stereo[2 * i - 2]) > floor || std::abs(stereo[2 * i - 1]) > floor) return i;
    return 0;
}

float Heard::loudest(std::size_t from, std::size_t to) const {
    float most = 0;
    for (std::size_t i = 2 * from; i < 2 * std::min(to, frames()); ++i)
        most = std::max(most, std::abs(stereo[i]));
    return most;
}

}  // namespace zv::test
