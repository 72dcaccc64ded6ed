#include "platform/ffmpeg/chunked_decoder.h"

#include <algorithm>

namespace zv {

bool ChunkedDecoder::seek(std::uint64_t frame) {
    if (frame > static_cast<std::uint64_t>(end())) return false;
    cursor_ = static_cast<std::int64_t>(frame);
    // A short way ahead is decoded, not sought; what lies behind is entered anew at the next read.
    const std::int64_t patience = format().rate / 2;
    if (cursor_ < chunkStart_ || cursor_ > chunkEnd() + patience) entered_ = false;
    return true;
}

std::size_t ChunkedDecoder::read(std::span<float> out) {
    const std::size_t channels = format().channels;
    const auto wanted = static_cast<std::int64_t>(out.size() / channels);
    std::int64_t done = 0;
    while (done < wanted && cursor_ < end()) {
        if (!entered_) {
            entered_ = true;
            enter();
        }
        std::int64_t frames = std::min(wanted - done, end() - cursor_);
        float* target = out.data() + static_cast<std::size_t>(done) * channels;
        if (cursor_ >= chunkStart_ && cursor_ < chunkEnd()) {
            frames = std::min(frames, chunkEnd() - cursor_);
            const float* from = chunk_.data() + static_cast<std::size_t>(cursor_ - chunkStart_) * channels;
            std::copy_n(from, static_cast<std::size_t>(frames) * channels, target);
        } else if (cursor_ < chunkStart_ || !nextChunk()) {
            if (cursor_ < chunkStart_) frames = std::min(frames, chunkStart_ - cursor_);
            std::fill_n(target, static_cast<std::size_t>(frames) * channels, 0.0F);
        } else {
            continue;
        }
        cursor_ += frames;
        done += frames;
    }
    return static_cast<std::size_t>(done);
}

}  // namespace zv
