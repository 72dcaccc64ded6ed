/// Reading frame by frame from sound that a codec gives in chunks. Private to platform/ffmpeg.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "engine/ports.h"

namespace zv {

/// What is missing, before a chunk or behind the last one, is silence: everything else keeps its place.
class ChunkedDecoder : public engine::Decoder {
  public:
    bool ended() const override { return cursor_ >= end(); }
    bool seek(std::uint64_t frame) override;
    std::size_t read(std::span<float> out) override;

  protected:
    /// Frames of the whole sound.
    virtual std::int64_t end() const = 0;
    /// Goes to where decoding has to begin for the sound at cursor(). May leave a first chunk.
    virtual void enter() = 0;
    /// Replaces the chunk by the next one. False at the end of the file.
    virtual bool nextChunk() = 0;

    std::int64_t cursor() const { return cursor_; }
    std::int64_t chunkEnd() const {
        return chunkStart_ + static_cast<std::int64_t>(chunk_.size() / format().channels);
    }

    std::vector<float> chunk_;
    std::int64_t chunkStart_ = 0;  ///< frame of the sound at which the chunk begins

  private:
    std::int64_t cursor_ = 0;  ///< frame that read() gives next
    bool entered_ = false;
};

}  // namespace zv
