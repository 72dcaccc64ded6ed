#include "platform/ffmpeg/ogg_file.h"

#include <algorithm>

#include "platform/ffmpeg/xiph_codec.h"

namespace zv {
namespace {

constexpr std::int64_t longestGap = 600 * 48'000;  // frames; a longer one is a page that lies

/// Puts packets together from pages, and the file from packets.
class Surveyor {
  public:
    explicit Surveyor(ByteWindow& bytes) : bytes_(&bytes) {}

    std::optional<OggFile> run() {
        OggPages pages(*bytes_);
        OggPage page;
        bool damage = false;
        while (pages.next(page)) {
            damage = damage || page.afterDamage;
            if (page.flags & OggPage::beginsStream) {
                beginStream(page);
            } else if (codec_ && page.serial == serial_) {
                lost_ = lost_ || damage || page.number != nextNumber_;
                damage = false;
                takePage(page);
            }
            if (page.serial == serial_) nextNumber_ = page.number + 1;
            if (!(page.flags & OggPage::beginsStream)) beginnings_ = false;
        }
        finishLink();
        if (file_.links.empty()) return std::nullopt;
        file_.packets.shrink_to_fit();
        file_.pieces.shrink_to_fit();
        return std::move(file_);
    }

  private:
    void beginStream(const OggPage& page) {
        if (!beginnings_) finishLink();  // else one more stream beside the others
        beginnings_ = true;
        if (codec_ || over_) return;
        std::size_t size = 0;
        for (std::size_t k = 0; k < page.segments; ++k) size += page.lacing[k];
        codec_ = XiphCodec::begin(bytes_->read(page.body, size));
        serial_ = page.serial;
    }

    void takePage(const OggPage& page) {
        if (lost_ || !(page.flags & OggPage::continues)) dropPiecesOfPart();
        bool skipping = (page.flags & OggPage::continues) && !inPart_;
        std::int64_t at = page.body;
        std::uint32_t size = 0;
        for (std::size_t k = 0; k < page.segments; ++k) {
            size += page.lacing[k];
            const bool ends = page.lacing[k] < 255;
            if (!ends && k + 1 < page.segments) continue;
            if (!skipping) addPiece({at, size});
            if (ends && !skipping) endPacket();
            if (ends) skipping = false;
            at += size;
            size = 0;
        }
        if (page.granule >= 0 && !pending_.empty()) settle(page.granule);
    }

    void addPiece(OggFile::Piece piece) {
        if (!inPart_) {
            inPart_ = true;
            partStart_ = file_.pieces.size();
            head_.clear();
        }
        if (head_.size() < XiphCodec::headBytes) {
            const auto some = bytes_->read(
                piece.byte, std::min<std::size_t>(piece.size, XiphCodec::headBytes - head_.size()));
            head_.insert(head_.end(), some.begin(), some.end());
        }
        file_.pieces.push_back(piece);
    }

    void dropPiecesOfPart() {
        if (inPart_) file_.pieces.resize(partStart_);
        inPart_ = false;
    }

    std::vector<std::uint8_t> wholePart() {
        std::vector<std::uint8_t> result;
        for (std::size_t k = partStart_; k < file_.pieces.size(); ++k) {
            const auto some = bytes_->read(file_.pieces[k].byte, file_.pieces[k].size);
            result.insert(result.end(), some.begin(), some.end());
        }
        return result;
    }

    void endPacket() {
        inPart_ = false;
        if (!codec_) return;
        if (!parameters_) {
            if (codec_->takeHeader(wholePart())) {
                file_.pieces.resize(partStart_);
                return;
            }
            parameters_ = codec_->parameters();
            if (!parameters_) codec_.reset();
        }
        if (!codec_) return;
        if (lost_) codec_->restart();
        const std::int64_t frames = codec_->framesOf(head_);
        pending_.push_back(
            {{0, static_cast<std::uint32_t>(partStart_), lost_ && !file_.packets.empty()}, frames});
        lostBefore_ = lostBefore_ || lost_;
        lost_ = false;
    }

    /// The packets up to here end at `granule` of their stream.
    void settle(std::int64_t granule) {
        std::int64_t sum = 0;
        for (const Pending& packet : pending_) sum += packet.frames;
        if (!origin_) {
            origin_ = granule - sum;
            firstSum_ = sum;
        }
        const std::int64_t told = granule - *origin_;
        // After a loss the stamps tell how much is missing. Elsewhere the packets are right.
        const std::int64_t gap = lostBefore_ ? told - decoded_ - sum : 0;
        if (gap > 0 && gap < longestGap) decoded_ += gap;
        for (Pending& packet : pending_) {
            packet.packet.frame = decoded_;
            decoded_ += packet.frames;
            file_.packets.push_back(packet.packet);
        }
        ending_ = std::min(decoded_, std::max(told, decoded_ - sum));
        pending_.clear();
        lostBefore_ = false;
    }

    void finishLink() {
        dropPiecesOfPart();
        if (!pending_.empty()) settle((origin_ ? *origin_ : 0) + decoded_ + (std::int64_t{1} << 40));
        if (parameters_ && origin_ && file_.packets.size() > linkStart_) {
            // A first page that tells fewer frames than it gives begins the sound later, or, being the last, ends it sooner.
            const bool onlyPage = decoded_ == firstSum_;
            const std::int64_t early = std::max<std::int64_t>(0, -*origin_);
            const std::int64_t skip = codec_->skip() + (onlyPage ? 0 : early);
            const std::int64_t end = onlyPage ? decoded_ - early : ending_;
            const std::int64_t begin = file_.links.empty() ? 0 : file_.length();
            for (std::size_t k = linkStart_; k < file_.packets.size(); ++k)
                file_.packets[k].frame += begin - skip;
            const bool fits = file_.links.empty() ||
                              parameters_->sample_rate == file_.links.front().parameters->sample_rate;
            if (fits && end > skip)
                file_.links.push_back(
                    {parameters_, linkStart_, file_.packets.size(), begin, begin + end - skip});
            over_ = over_ || !fits;  // at another rate it would be another sound
        }
        codec_.reset();
        parameters_.reset();
        pending_.clear();
        origin_.reset();
        decoded_ = ending_ = firstSum_ = 0;
        lost_ = lostBefore_ = false;
        linkStart_ = file_.packets.size();
    }

    struct Pending {
        OggFile::Packet packet;
        std::int64_t frames;
    };

    ByteWindow* bytes_;
    OggFile file_;
    std::optional<XiphCodec> codec_;                       ///< of the stream that is taken
    std::shared_ptr<const AVCodecParameters> parameters_;  ///< of it, behind its headers
    std::uint32_t serial_ = 0, nextNumber_ = 0;
    bool beginnings_ = false;  ///< only first pages of streams so far
    bool over_ = false;
    std::size_t partStart_ = 0;  ///< first piece of the packet that is being put together
    bool inPart_ = false;
    std::vector<std::uint8_t> head_;  ///< first bytes of that packet
    std::vector<Pending> pending_;    ///< packets whose page has not told where it ends
    bool lost_ = false, lostBefore_ = false;
    std::size_t linkStart_ = 0;
    std::optional<std::int64_t> origin_;  ///< granule at which the link's first packet begins
    std::int64_t decoded_ = 0;            ///< frames of the link so far
    std::int64_t ending_ = 0;             ///< of them up to the end that the last page tells
    std::int64_t firstSum_ = 0;           ///< of the first page that tells
};

}  // namespace

std::optional<OggFile> OggFile::survey(ByteWindow& bytes) { return Surveyor(bytes).run(); }

}  // namespace zv
