/// SoundTouch, a stretching library: what ./bench holds the engine's own stretcher against. The program does not use it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace zv {

/// How much of the library sound passes: all of its stages, with its own settings, or the stretching stage alone, which
/// is all that the engine's stretcher does, with the same sequences, overlaps and searches.
enum class LibraryPart : std::uint8_t { whole, stretching };

class StretchingLibrary {
  public:
    /// `ratio`: source frames a frame of output.
    StretchingLibrary(std::uint32_t rate, std::uint32_t channels, double ratio, LibraryPart part);
    ~StretchingLibrary();
    void put(std::span<const float> in);     ///< interleaved
    std::size_t take(std::span<float> out);  ///< frames written

  private:
    class Touch;
    std::unique_ptr<Touch> touch_;
    const std::uint32_t channels_;
    const LibraryPart part_;
};

}  // namespace zv
