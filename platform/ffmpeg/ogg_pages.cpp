#include "platform/ffmpeg/ogg_pages.h"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <string_view>

namespace zv {
namespace {

constexpr std::size_t surveyBytes = std::size_t{1} << 18, narrowBytes = std::size_t{1} << 14;
constexpr std::size_t headerBytes = 27;
constexpr std::size_t largestPage = headerBytes + 255 + 255 * 255;
constexpr std::string_view capture("OggS\0", 5);  // with the only version there is

std::uint64_t littleEndian(std::span<const std::uint8_t> bytes, std::size_t at, int count) {
    std::uint64_t value = 0;
    for (int i = count; i-- > 0;) value = value << 8 | bytes[at + static_cast<std::size_t>(i)];
    return value;
}

/// The checksum of a page, whose own field counts as 0.
std::uint32_t checksum(std::span<const std::uint8_t> page) {
    static const auto table = [] {
        std::array<std::uint32_t, 256> result{};
        for (std::uint32_t i = 0; i < 256; ++i) {
            std::uint32_t value = i << 24;
            for (int bit = 0; bit < 8; ++bit) value = value << 1 ^ (value & 0x80000000U ? 0x04C11DB7U : 0);
            result[i] = value;
        }
        return result;
    }();
    constexpr std::size_t field = 22;
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < page.size(); ++i) {
        const std::uint8_t byte = i >= field && i < field + 4 ? 0 : page[i];
        sum = sum << 8 ^ table[sum >> 24 ^ byte];
    }
    return sum;
}

}  // namespace

ByteWindow::ByteWindow(const std::string& path)
    : file_(std::filesystem::path(path), std::ios::binary), least_(surveyBytes) {
    file_.seekg(0, std::ios::end);
    size_ = file_ ? static_cast<std::int64_t>(file_.tellg()) : 0;
}

std::span<const std::uint8_t> ByteWindow::read(std::int64_t at, std::size_t count) {
    if (at < 0 || at >= size_) return {};
    count = static_cast<std::size_t>(std::min<std::int64_t>(static_cast<std::int64_t>(count), size_ - at));
    const auto end = start_ + static_cast<std::int64_t>(bytes_.size());
    if (at < start_ || at + static_cast<std::int64_t>(count) > end) {
        bytes_.resize(std::max(count, least_));
        start_ = at;
        file_.clear();
        file_.seekg(at);
        file_.read(reinterpret_cast<char*>(bytes_.data()), static_cast<std::streamsize>(bytes_.size()));
        bytes_.resize(static_cast<std::size_t>(std::max<std::streamsize>(0, file_.gcount())));
    }
    const auto offset = static_cast<std::size_t>(at - start_);
    return std::span(bytes_).subspan(offset, std::min(count, bytes_.size() - offset));
}

void ByteWindow::narrow() {
    least_ = narrowBytes;
    std::vector<std::uint8_t>().swap(bytes_);
}

/// The size of the page at the beginning of `bytes`, 0 when there is none or not all of it.
std::size_t OggPages::parse(std::span<const std::uint8_t> bytes, OggPage& page) const {
    if (bytes.size() < headerBytes ||
        !std::equal(capture.begin(), capture.end(), bytes.begin(),
                    [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; }))
        return 0;
    page.flags = bytes[5];
    page.granule = static_cast<std::int64_t>(littleEndian(bytes, 6, 8));
    page.serial = static_cast<std::uint32_t>(littleEndian(bytes, 14, 4));
    page.number = static_cast<std::uint32_t>(littleEndian(bytes, 18, 4));
    page.segments = bytes[26];
    if (bytes.size() < headerBytes + page.segments) return 0;
    std::copy_n(bytes.begin() + headerBytes, page.segments, page.lacing.begin());
    const std::size_t size =
        std::accumulate(page.lacing.begin(), page.lacing.begin() + static_cast<std::ptrdiff_t>(page.segments),
                        headerBytes + page.segments);
    page.body = at_ + static_cast<std::int64_t>(headerBytes + page.segments);
    return size <= bytes.size() ? size : 0;
}

bool OggPages::next(OggPage& page) {
    page.afterDamage = false;
    while (at_ < file_->size()) {
        const auto bytes = file_->read(at_, largestPage);
        const std::size_t size = parse(bytes, page);
        // Where a page is expected one is taken at its word; elsewhere only if its sum agrees.
        if (size > 0 && (!page.afterDamage || checksum(bytes.first(size)) == littleEndian(bytes, 22, 4))) {
            at_ += static_cast<std::int64_t>(size);
            return true;
        }
        page.afterDamage = true;
        const auto found =
            std::search(bytes.begin() + 1, bytes.end(), capture.begin(), capture.end(),
                        [](std::uint8_t a, char b) { return a == static_cast<std::uint8_t>(b); });
        at_ += found - bytes.begin();
        if (found == bytes.end())
            at_ -= static_cast<std::int64_t>(std::min(capture.size() - 1, bytes.size() - 1));
    }
    return false;
}

}  // namespace zv
