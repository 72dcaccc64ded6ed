/// The pages of an Ogg file. Private to platform/ffmpeg.
#pragma once

#include <array>
#include <cstdint>
#include <fstream>
#include <span>
#include <string>
#include <vector>

namespace zv {

/// A file read through a window in memory.
class ByteWindow {
  public:
    explicit ByteWindow(const std::string& path);
    std::int64_t size() const { return size_; }
    /// Up to `count` bytes at `at`, fewer at the end of the file; valid until the next call.
    std::span<const std::uint8_t> read(std::int64_t at, std::size_t count);
    /// From now on little is read at a time.
    void narrow();

  private:
    std::ifstream file_;
    std::int64_t size_ = 0;
    std::vector<std::uint8_t> bytes_;
    std::int64_t start_ = 0;
    std::size_t least_;  ///< bytes to read at a time
};

struct OggPage {
    static constexpr int continues = 1, beginsStream = 2;  // bits of `flags`

    int flags = 0;
    std::int64_t granule = -1;  ///< frames of the stream up to the last packet that ends here, -1 none
    std::uint32_t serial = 0;   ///< of its stream
    std::uint32_t number = 0;   ///< within its stream
    std::size_t segments = 0;
    std::array<std::uint8_t, 255> lacing{};  ///< bytes of each segment; one under 255 ends a packet
    std::int64_t body = 0;                   ///< place of the first segment in the file
    bool afterDamage = false;                ///< bytes that are no page came before it
};

/// Reads page after page and passes over what is none.
class OggPages {
  public:
    explicit OggPages(ByteWindow& file) : file_(&file) {}
    /// False behind the last whole page.
    bool next(OggPage& page);

  private:
    std::size_t parse(std::span<const std::uint8_t> bytes, OggPage& page) const;

    ByteWindow* file_;
    std::int64_t at_ = 0;
};

}  // namespace zv
