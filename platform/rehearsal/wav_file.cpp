#include "platform/rehearsal/wav_file.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>

namespace zv {
namespace {

constexpr std::uint16_t kFormatFloat = 3;
constexpr std::uint16_t kChannels = 2;
constexpr std::uint16_t kBytesPerFrame = kChannels * sizeof(float);
// Places in the header, which is RIFF, "fmt " of 18 bytes, "fact", "data".
constexpr std::size_t kHeaderBytes = 58;
constexpr std::size_t kRiffSizeAt = 4;
constexpr std::size_t kFactFramesAt = 46;
constexpr std::size_t kDataSizeAt = 54;

static_assert(std::endian::native == std::endian::little, "samples are written as they lie in memory");

/// What the field of a size can hold; a longer file reads to its end all the same.
std::uint32_t saturated(std::uint64_t n) {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(n, std::numeric_limits<std::uint32_t>::max()));
}

template <class T>
void put(std::array<char, kHeaderBytes>& header, std::size_t at, T value) {
    std::memcpy(header.data() + at, &value, sizeof value);
}

void putText(std::array<char, kHeaderBytes>& header, std::size_t at, const char* four) {
    std::memcpy(header.data() + at, four, 4);
}

}  // namespace

bool WavFile::open(const std::string& path, std::uint32_t rate) {
    file_.open(path, std::ios::binary | std::ios::trunc);
    std::array<char, kHeaderBytes> header{};
    putText(header, 0, "RIFF");
    putText(header, 8, "WAVE");
    putText(header, 12, "fmt ");
    put(header, 16, std::uint32_t{18});
    put(header, 20, kFormatFloat);
    put(header, 22, kChannels);
    put(header, 24, rate);
    put(header, 28, rate * kBytesPerFrame);
    put(header, 32, kBytesPerFrame);
    put(header, 34, std::uint16_t{8 * sizeof(float)});
    putText(header, 38, "fact");
    put(header, 42, std::uint32_t{4});
    putText(header, 50, "data");
    file_.write(header.data(), header.size());
    return file_.good();
}

void WavFile::write(std::span<const float> stereo) {
    file_.write(reinterpret_cast<const char*>(stereo.data()),
                static_cast<std::streamsize>(stereo.size_bytes()));
    frames_ += stereo.size() / kChannels;
}

void WavFile::writeSilence(std::uint64_t frames) {
    static constexpr std::array<float, 8192> kSilence{};
    while (frames > 0) {
        const std::uint64_t part = std::min<std::uint64_t>(frames, kSilence.size() / kChannels);
        write(std::span(kSilence).first(static_cast<std::size_t>(part) * kChannels));
        frames -= part;
    }
}

bool WavFile::close() {
    const std::uint64_t bytes = frames_ * kBytesPerFrame;
    const auto patch = [this](std::size_t at, std::uint32_t value) {
        file_.seekp(static_cast<std::streamoff>(at));
        file_.write(reinterpret_cast<const char*>(&value), sizeof value);
    };
    patch(kRiffSizeAt, saturated(kHeaderBytes - 8 + bytes));
    patch(kFactFramesAt, saturated(frames_));
    patch(kDataSizeAt, saturated(bytes));
    file_.close();
    return !file_.fail();
}

}  // namespace zv
