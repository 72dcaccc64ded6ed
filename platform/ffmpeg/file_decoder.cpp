#include <algorithm>
#include <string_view>

#include "engine/bass.h"
#include "platform/ffmpeg/ffmpeg_decoders.h"
#include "platform/ffmpeg/media_input.h"
#include "platform/ffmpeg/packet_map.h"

namespace zv {
namespace {

using namespace std::chrono_literals;

constexpr auto surveyLimit = 60s;  // of the pass over a very long file
constexpr auto stepLimit = 5s;     // of one read or seek
constexpr int seekAttempts = 4;
constexpr double searchSeconds = 0.5;  // more to read where it takes a few packets to tell where they are
constexpr int unplacedPackets = 64;    // that may follow a seek before it counts as failed

/// Seconds of sound after which a codec that was entered in the middle gives the same as from the start.
double prerollSeconds(AVCodecID codec) {
    if (codec == AV_CODEC_ID_FLAC || codec == AV_CODEC_ID_ALAC || av_get_exact_bits_per_sample(codec) > 0)
        return 0;
    if (codec == AV_CODEC_ID_OPUS) return 1;
    return 0.25;
}

class FileDecoder : public engine::Decoder {
  public:
    FileDecoder(std::unique_ptr<MediaInput> input, PacketMap map)
        : input_(std::move(input)), map_(std::move(map)), walker_(map_) {
        preroll_ =
            static_cast<std::int64_t>(prerollSeconds(input_->codec().codec_id) * input_->format().rate);
    }

    engine::SoundFormat format() const override { return input_->format(); }
    std::optional<std::uint64_t> length() const override { return map_.length(); }
    bool ended() const override { return cursor_ >= end(); }

    bool seek(std::uint64_t frame) override {
        if (frame > map_.length()) return false;
        cursor_ = static_cast<std::int64_t>(frame);
        // A short way ahead is decoded, not sought; what lies behind is entered anew at the next read.
        const std::int64_t patience = input_->format().rate / 2;
        if (cursor_ < chunkStart_ || cursor_ > chunkEnd() + patience) entered_ = false;
        return true;
    }

    std::size_t read(std::span<float> out) override {
        input_->setLimit(stepLimit);
        const std::size_t channels = input_->format().channels;
        const auto wanted = static_cast<std::int64_t>(out.size() / channels);
        std::int64_t done = 0;
        while (done < wanted && cursor_ < end()) {
            if (!entered_) enter();
            std::int64_t frames = std::min(wanted - done, end() - cursor_);
            float* target = out.data() + static_cast<std::size_t>(done) * channels;
            if (cursor_ >= chunkStart_ && cursor_ < chunkEnd()) {
                frames = std::min(frames, chunkEnd() - cursor_);
                const float* from =
                    chunk_.data() + static_cast<std::size_t>(cursor_ - chunkStart_) * channels;
                std::copy_n(from, static_cast<std::size_t>(frames) * channels, target);
            } else if (cursor_ < chunkStart_ || !nextChunk()) {
                // A hole that damage left, or an end that came early: silence keeps everything else in its
                // place.
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

  private:
    std::int64_t end() const { return static_cast<std::int64_t>(map_.length()); }
    std::int64_t chunkEnd() const {
        return chunkStart_ + static_cast<std::int64_t>(chunk_.size() / input_->format().channels);
    }

    /// Decodes the next packet that gives sound into the chunk. False at the end of the file.
    bool nextChunk() {
        while (!drained_) {
            chunk_.clear();
            if (!input_->readPacket()) {
                drained_ = true;
                input_->decode(nullptr, chunk_);
                chunkStart_ = expected_;
                return !chunk_.empty();
            }
            const auto place = walker_.place(input_->packet());
            decodeInto(place);
            if (!chunk_.empty()) return true;
        }
        chunk_.clear();
        chunkStart_ = expected_;
        return false;
    }

    void decodeInto(std::optional<std::int64_t> place) {
        const Yield yield = input_->decode(&input_->packet(), chunk_);
        const auto stamped = map_.frameOf(yield.stamp);
        chunkStart_ = stamped ? *stamped : place.value_or(expected_);
        expected_ = chunkEnd();
    }

    /// Enters the file far enough before the cursor for its codec.
    void enter() {
        entered_ = true;
        std::int64_t lead = preroll_;
        for (int attempt = 0;; ++attempt, lead = lead * 4 + input_->format().rate) {
            const bool fromStart = cursor_ <= lead || attempt == seekAttempts;
            drained_ = false;
            chunk_.clear();
            if (fromStart ? enterStart() : enterAt(cursor_ - lead)) return;
            if (fromStart) return;  // unreadable now: what is read from here on is silence
        }
    }

    bool enterAt(std::int64_t frame) {
        if (!map_.enter(*input_, frame)) return false;
        walker_.restart(false);
        for (int i = 0; i < unplacedPackets && input_->readPacket(); ++i) {
            const auto place = walker_.place(input_->packet());
            if (place && *place > (map_.placesAtOnce() ? frame : cursor_)) return false;
            chunk_.clear();
            decodeInto(place);
            if (place) return true;
        }
        return false;
    }

    bool enterStart() {
        const auto atFirst = [&] {
            return input_->readPacket() &&
                   (input_->packet().pts == map_.firstStamp() || input_->packet().dts == map_.firstStamp());
        };
        const bool sought =
            map_.firstStamp() != AV_NOPTS_VALUE && input_->seekStart(map_.firstStamp()) && atFirst();
        if (!sought && (!input_->reopen() || !input_->readPacket())) {
            drained_ = true;
            chunkStart_ = expected_ = end();
            return false;
        }
        walker_.restart(true);
        expected_ = 0;
        decodeInto(walker_.place(input_->packet()));
        return true;
    }

    std::unique_ptr<MediaInput> input_;
    PacketMap map_;
    PacketMap::Walker walker_;
    std::int64_t preroll_ = 0;
    std::int64_t cursor_ = 0;      ///< frame that read() gives next
    std::vector<float> chunk_;     ///< what the last packet gave
    std::int64_t chunkStart_ = 0;  ///< its first frame
    std::int64_t expected_ = 0;    ///< where the next chunk begins unless the map knows better
    bool entered_ = false;
    bool drained_ = false;
};

}  // namespace

std::unique_ptr<engine::Decoder> openFileDecoder(const std::string& path, int& error) {
    auto input = MediaInput::openFile(path, error);
    if (!input) return nullptr;
    input->setLimit(surveyLimit);
    auto map = PacketMap::survey(*input);
    if (!map || input->format().rate == 0) {
        error = BASS_ERROR_FILEFORM;
        return nullptr;
    }
    return std::make_unique<FileDecoder>(std::move(input), std::move(*map));
}

}  // namespace zv
