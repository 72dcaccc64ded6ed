#include "platform/ffmpeg/ogg_decoder.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "platform/ffmpeg/chunked_decoder.h"
#include "platform/ffmpeg/ogg_file.h"
#include "platform/ffmpeg/packet_decoder.h"

namespace zv {
namespace {

/// Seconds of sound after which a codec that was entered in the middle gives the same as from the start.
double prerollSeconds(AVCodecID codec) {
    if (codec == AV_CODEC_ID_FLAC) return 0;
    return codec == AV_CODEC_ID_OPUS ? 1 : 0.25;
}

constexpr std::int64_t opusDelay = 2880;  // frames that the codec may hold back between packets

class OggDecoder : public ChunkedDecoder {
  public:
    OggDecoder(ByteWindow bytes, OggFile file)
        : bytes_(std::move(bytes)), file_(std::move(file)), packet_(av_packet_alloc()) {}

    /// Decodes the beginning, which tells the format. False when there is no sound.
    bool begin() {
        if (!packet_) return false;
        openLink(0, 0);
        return nextChunk() && seek(0);
    }

    engine::SoundFormat format() const override { return decoder_.format(); }
    std::optional<std::uint64_t> length() const override { return static_cast<std::uint64_t>(end()); }

  protected:
    std::int64_t end() const override { return file_.length(); }

    void enter() override {
        const auto behind =
            std::upper_bound(file_.links.begin(), file_.links.end() - 1, cursor(),
                             [](std::int64_t frame, const auto& link) { return frame < link.end; });
        const OggFile::Link& link = *behind;
        const AVCodecID codec = link.parameters->codec_id;
        const auto lead = static_cast<std::int64_t>(prerollSeconds(codec) * format().rate);
        const auto first = file_.packets.begin() + static_cast<std::ptrdiff_t>(link.firstPacket);
        const auto last = file_.packets.begin() + static_cast<std::ptrdiff_t>(link.endPacket);
        auto at = std::upper_bound(first, last, cursor() - lead, [](std::int64_t frame, const auto& packet) {
            return frame < packet.frame;
        });
        if (at != first) --at;
        openLink(static_cast<std::size_t>(behind - file_.links.begin()),
                 static_cast<std::size_t>(at - file_.packets.begin()));
    }

    bool nextChunk() override {
        for (;;) {
            const OggFile::Link& link = file_.links[link_];
            chunk_.clear();
            if (next_ < link.endPacket) {
                decodeNext();
            } else if (!drained_) {
                drained_ = true;
                decoder_.decode(nullptr, chunk_);
                chunkStart_ = expected_;
            } else if (link_ + 1 < file_.links.size()) {
                openLink(link_ + 1, file_.links[link_ + 1].firstPacket);
            } else {
                return false;
            }
            const std::int64_t over = chunk_.empty() ? 0 : chunkEnd() - link.end;
            if (over > 0)
                chunk_.resize(chunk_.size() -
                              std::min(chunk_.size(), static_cast<std::size_t>(over) * format().channels));
            if (!chunk_.empty()) return true;
        }
    }

  private:
    void openLink(std::size_t link, std::size_t packet) {
        const AVCodecParameters& parameters = *file_.links[link].parameters;
        // A start has a codec as new: some keep a little of their state when they are told to forget it.
        if (link != link_ || !opened_ || packet == file_.links[link].firstPacket)
            opened_ = decoder_.open(parameters, {1, parameters.sample_rate}) >= 0;
        else
            decoder_.flush();
        link_ = link;
        next_ = packet;
        chunk_.clear();
        chunkStart_ = expected_ = file_.packets[packet].frame;
        drained_ = !opened_;
        if (!opened_) next_ = file_.links[link].endPacket;
    }

    void decodeNext() {
        const OggFile::Packet& place = file_.packets[next_];
        const std::size_t endPiece =
            next_ + 1 < file_.packets.size() ? file_.packets[next_ + 1].firstPiece : file_.pieces.size();
        std::size_t size = 0;
        for (std::size_t k = place.firstPiece; k < endPiece; ++k) size += file_.pieces[k].size;
        av_packet_unref(packet_.get());
        ++next_;
        if (av_new_packet(packet_.get(), static_cast<int>(size)) < 0) return;
        std::uint8_t* to = packet_->data;
        for (std::size_t k = place.firstPiece; k < endPiece; ++k) {
            const auto from = bytes_.read(file_.pieces[k].byte, file_.pieces[k].size);
            to = std::copy(from.begin(), from.end(), to);
        }
        std::fill(to, packet_->data + size, std::uint8_t{0});
        if (place.afterGap) decoder_.flush();
        const bool failed = decoder_.decode(packet_.get(), chunk_).failed;
        const bool goesOn = file_.links[link_].parameters->codec_id == AV_CODEC_ID_OPUS && !place.afterGap &&
                            !failed_ && std::abs(expected_ - place.frame) <= opusDelay;
        failed_ = failed;
        if (chunk_.empty()) return;
        chunkStart_ = goesOn ? expected_ : place.frame;
        expected_ = chunkEnd();
    }

    ByteWindow bytes_;
    OggFile file_;
    PacketHandle packet_;
    PacketDecoder decoder_;
    bool opened_ = false;
    std::size_t link_ = 0;
    std::size_t next_ = 0;       ///< packet to be decoded
    std::int64_t expected_ = 0;  ///< where the next chunk begins unless its packet knows better
    bool drained_ = false;
    bool failed_ = false;  ///< the codec refused the last packet
};

}  // namespace

std::unique_ptr<engine::Decoder> openOggDecoder(const std::string& path) {
    // Devices and pipes could hold the caller for ever.
    std::error_code failure;
    if (!std::filesystem::is_regular_file(std::filesystem::path(path), failure)) return nullptr;
    ByteWindow bytes(path);
    constexpr std::string_view capture = "OggS";
    const auto head = bytes.read(0, capture.size());
    if (!std::equal(head.begin(), head.end(), capture.begin(), capture.end(),
                    [](std::uint8_t a, char b) { return a == static_cast<std::uint8_t>(b); }))
        return nullptr;
    prepareLibraries();
    auto file = OggFile::survey(bytes);
    if (!file) return nullptr;
    bytes.narrow();
    auto decoder = std::make_unique<OggDecoder>(std::move(bytes), std::move(*file));
    return decoder->begin() ? std::move(decoder) : nullptr;
}

}  // namespace zv
