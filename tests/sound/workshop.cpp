#include "tests/sound/workshop.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <numbers>
#include <stdexcept>

namespace zv::test {

Folder::Folder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zv-sound-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
    path_ = pattern;
}

Folder::~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

int run(const std::string& command) { return std::system(command.c_str()); }

std::vector<char> outputOf(const std::string& command) {
    std::vector<char> all;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return all;
    std::array<char, 65536> some{};
    for (std::size_t got = 0; (got = std::fread(some.data(), 1, some.size(), pipe)) > 0;)
        all.insert(all.end(), some.begin(), some.begin() + static_cast<std::ptrdiff_t>(got));
    pclose(pipe);
    return all;
}

std::vector<float> wanderingTones(std::uint32_t rate, std::uint32_t channels, std::size_t frames) {
    std::vector<float> sound(frames * channels);
    for (std::uint32_t channel = 0; channel < channels; ++channel) {
        double low = 0, high = 0, lowStep = 0, highStep = 0;
        for (std::size_t i = 0; i < frames; ++i) {
            const double seconds = static_cast<double>(i) / rate;
            if (i % 64 == 0) lowStep = (300 + 170 * std::sin(1.7 * seconds + channel) + 90 * seconds) / rate;
            if (i % 64 == 0) highStep = (1900 + 900 * std::sin(5.3 * seconds + 2 * channel)) / rate;
            low += lowStep;
            high += highStep;
            const double tones =
                0.35 * std::sin(2 * std::numbers::pi * low) + 0.2 * std::sin(2 * std::numbers::pi * high);
            sound[i * channels + channel] = static_cast<float>(tones);
        }
    }
    return sound;
}

void writeWav(const std::string& path, std::span<const float> sound, std::uint32_t rate,
              std::uint32_t channels) {
    const auto dataBytes = static_cast<std::uint32_t>(sound.size() * 2);
    const std::uint32_t head[] = {
        36 + dataBytes,          0x45564157, 0x20746D66, 16, channels << 16 | 1, rate, rate * channels * 2,
        16 << 16 | channels * 2, 0x61746164, dataBytes};  // WAVE, "fmt ", data
    std::vector<char> bytes(4 + sizeof head + dataBytes, 'R');
    std::memcpy(bytes.data(), "RIFF", 4);
    std::memcpy(bytes.data() + 4, head, sizeof head);
    char* to = bytes.data() + 4 + sizeof head;
    for (const float sample : sound) {
        const auto value = static_cast<std::int16_t>(std::lround(std::clamp(sample, -1.0F, 0.9999F) * 32768));
        std::memcpy(to, &value, sizeof value);
        to += sizeof value;
    }
    writeBytes(path, bytes);
}

std::vector<char> readBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void writeBytes(const std::string& path, std::span<const char> bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::vector<float> readWhole(engine::Decoder& decoder) {
    const std::size_t channels = decoder.format().channels;
    std::vector<float> all, some;
    std::size_t frames = 1;
    for (;;) {
        frames = frames * 5 % 9973 + 1;
        some.resize(frames * channels);
        const std::size_t got = decoder.read(some);
        if (got == 0) return all;
        all.insert(all.end(), some.begin(), some.begin() + static_cast<std::ptrdiff_t>(got * channels));
    }
}

int lagOf(std::span<const float> sound, std::span<const float> original, std::uint32_t channels, int most) {
    const auto frames = static_cast<int>(std::min(sound.size(), original.size()) / channels);
    const int from = frames / 3, count = std::min(4000, frames / 3);
    double best = -1e300;
    int bestLag = 0;
    for (int lag = -most; lag <= most; ++lag) {
        double product = 0;
        for (int i = from; i < from + count; ++i) {
            if (i + lag < 0 || i + lag >= frames) continue;
            product += static_cast<double>(sound[static_cast<std::size_t>(i + lag) * channels]) *
                       static_cast<double>(original[static_cast<std::size_t>(i) * channels]);
        }
        if (product > best) best = product, bestLag = lag;
    }
    return bestLag;
}

std::vector<char> tinyModule(int rows) {
    constexpr std::size_t headerBytes = 1084, patternBytes = 64 * 4 * 4, waveBytes = 64;
    std::vector<char> bytes(headerBytes + patternBytes + waveBytes, 0);
    std::memcpy(bytes.data(), "tiny", 4);
    char* sample = bytes.data() + 20;
    sample[23] = waveBytes / 2;  // length in words
    sample[25] = 64;             // volume
    sample[29] = waveBytes / 2;  // loop from 0, this many words
    bytes[950] = 1;              // one position
    bytes[951] = 127;
    std::memcpy(bytes.data() + 1080, "M.K.", 4);
    for (int row = 0; row < rows; row += 8) {
        char* cell = bytes.data() + headerBytes + row * 16;
        cell[0] = 0x01, cell[1] = static_cast<char>(0xAC);  // a middle note of sample 1
        cell[2] = 0x10;
    }
    char* last = bytes.data() + headerBytes + (rows - 1) * 16;
    last[2] = static_cast<char>((last[2] & 0xF0) | 0x0B), last[3] = 0;  // jump to position 0
    for (std::size_t i = 0; i < waveBytes; ++i)
        bytes[headerBytes + patternBytes + i] = static_cast<char>(
            std::lround(100 * std::sin(2 * 3.14159265 * static_cast<double>(i) / waveBytes)));
    return bytes;
}

}  // namespace zv::test
