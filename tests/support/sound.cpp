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
void writeWav(const std::filesystem::path& file, std::span<const std::int16_t> samples, std::uint32_t rate,
              std::uint16_t channels) {
    static_assert(std::endian::native == std::endian::little);
    const auto size = static_cast<std::uint32_t>(samples.size_bytes());
    const std::uint32_t frame = 2U * channels;
    const std::uint32_t head[] = {
        36 + size, 0x45564157,   0x20746D66,       16, std::uint32_t{channels} << 16 | 1,  // PCM
        rate,      rate * frame, 16U << 16 | frame};
    std::string bytes = "RIFF";
    bytes.append(reinterpret_cast<const char*>(head), sizeof head);
    bytes.append("data").append(reinterpret_cast<const char*>(&size), sizeof size);
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
