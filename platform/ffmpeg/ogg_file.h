/// Where each packet of an Ogg file's sound stands in the decoded sound. Private to platform/ffmpeg.
///
/// FFmpeg's own reader of this container seeks inexactly in FLAC, does not get over damage, and takes several files that
/// were joined for one. Here one pass over the pages tells all: the pages where the packets lie, the packets' first
/// bytes how many frames each gives. Nothing is decoded.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/ffmpeg/av_handles.h"
#include "platform/ffmpeg/ogg_pages.h"

namespace zv {

struct OggFile {
    /// A stretch of bytes; a packet that goes over several pages has several.
    struct Piece {
        std::int64_t byte;
        std::uint32_t size;
    };
    struct Packet {
        std::int64_t frame;        ///< of the whole sound, at which what it gives begins
        std::uint32_t firstPiece;  ///< its pieces reach to the next packet's
        bool afterGap;             ///< something is missing before it
    };
    /// One of the files that were joined, mostly the only one.
    struct Link {
        std::shared_ptr<const AVCodecParameters> parameters;
        std::size_t firstPacket = 0, endPacket = 0;
        std::int64_t begin = 0, end = 0;  ///< frames of the whole sound
    };

    /// Nothing when there is none of the sounds known here in it.
    static std::optional<OggFile> survey(ByteWindow& bytes);
    std::int64_t length() const { return links.back().end; }

    std::vector<Link> links;
    std::vector<Packet> packets;
    std::vector<Piece> pieces;
};

}  // namespace zv
