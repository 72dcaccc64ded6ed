
#include "engine/bass.h"
#include "platform/ffmpeg/chunked_decoder.h"
#include "platform/ffmpeg/ffmpeg_decoders.h"
#include "platform/ffmpeg/media_input.h"
#include "platform/ffmpeg/ogg_decoder.h"
#include "platform/ffmpeg/packet_map.h"

namespace zv {
namespace {

using namespace std::chrono_literals;

constexpr auto surveyLimit = 60s;  // of the pass over a very long file
constexpr auto stepLimit = 5s;     // of one read or seek
constexpr int seekAttempts = 4;
constexpr int unplacedPackets = 64;  // that may follow a seek before it counts as failed

/// Seconds of sound after which a codec that was entered in the middle gives the same as from the start.
double prerollSeconds(AVCodecID codec) {
    if (codec == AV_CODEC_ID_FLAC || codec == AV_CODEC_ID_ALAC || av_get_exact_bits_per_sample(codec) > 0)
        return 0;
    if (codec == AV_CODEC_ID_OPUS) return 1;
    return 0.25;
}

class FileDecoder : public ChunkedDecoder {
  public:
    FileDecoder(std::unique_ptr<MediaInput> input, PacketMap map)
        : input_(std::move(input)), map_(std::move(map)), walker_(map_) {
        preroll_ =
            static_cast<std::int64_t>(prerollSeconds(input_->codec().codec_id) * input_->format().rate);
    }

    engine::SoundFormat format() const override { return input_->format(); }
    std::optional<std::uint64_t> length() const override { return map_.length(); }
    std::size_t read(std::span<float> out) override {
        input_->setLimit(stepLimit);
        return ChunkedDecoder::read(out);
    }

  protected:
    std::int64_t end() const override { return static_cast<std::int64_t>(map_.length()); }

    /// Decodes the next packet that gives sound into the chunk. False at the end of the file.
    bool nextChunk() override {
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

    /// Enters the file far enough before the cursor for its codec.
    void enter() override {
        std::int64_t lead = preroll_;
        for (int attempt = 0;; ++attempt, lead = lead * 4 + input_->format().rate) {
            const bool fromStart = cursor() <= lead || attempt == seekAttempts;
            drained_ = false;
            chunk_.clear();
            if (fromStart ? enterStart() : enterAt(cursor() - lead)) return;
            if (fromStart) return;  // unreadable now: what is read from here on is silence
        }
    }

  private:
    void decodeInto(std::optional<std::int64_t> place) {
        const Yield yield = input_->decode(&input_->packet(), chunk_);
        const auto stamped = map_.frameOf(yield.stamp);
        chunkStart_ = stamped ? *stamped : place.value_or(expected_);
        expected_ = chunkEnd();
    }

    bool enterAt(std::int64_t frame) {
        if (!map_.enter(*input_, frame)) return false;
        walker_.restart(frame);
        for (int i = 0; i < unplacedPackets && input_->readPacket(); ++i) {
            const auto place = walker_.place(input_->packet());
            if (place && *place > (map_.placesAtOnce() ? frame : cursor())) return false;
            chunk_.clear();
            decodeInto(place);
            if (place) return true;
        }
        return false;
    }

    bool enterStart() {
        const bool sought = map_.enterStart(*input_);
        if (!sought && (!input_->reopen() || !input_->readPacket())) {
            drained_ = true;
            chunkStart_ = expected_ = end();
            return false;
        }
        walker_.restartAtStart();
        expected_ = 0;
        decodeInto(walker_.place(input_->packet()));
        return true;
    }

    std::unique_ptr<MediaInput> input_;
    PacketMap map_;
    PacketMap::Walker walker_;
    std::int64_t preroll_ = 0;
    std::int64_t expected_ = 0;  ///< where the next chunk begins unless the map knows better
    bool drained_ = false;
};

}  // namespace

std::unique_ptr<engine::Decoder> openFileDecoder(const std::string& path, int& error) {
    error = BASS_OK;
    if (auto decoder = openOggDecoder(path)) return decoder;
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
