/// The packets of a sound file as its own tables tell them, without reading their sound. Private to platform/ffmpeg.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "platform/ffmpeg/media_input.h"
#include "platform/ffmpeg/xiph_codec.h"

namespace zv {

struct ListedPacket {
    std::int64_t stamp;     ///< in ticks of the stream; of some containers with a constant offset
    std::int64_t duration;  ///< ticks, 0 unknown
    std::int64_t header;    ///< frames that its header tells, 0 unknown
    std::int64_t byte;      ///< where it stands in the file, -1 unknown
    int size;
};

/// Frames of a packet of `size` bytes that begins with `head`; 0 unknown. `xiph` follows the packets of such a codec.
std::int64_t framesByHead(const MediaInput& input, std::optional<XiphCodec>& xiph,
                          std::span<const std::uint8_t> head, int size);

/// All packets of the sound in `input`, the first of which stands at byte `first`; none where the container tells nothing or does it in a way that is not known
/// here. What it says is to be compared with what is read.
std::vector<ListedPacket> listPackets(const MediaInput& input, std::int64_t first);

}  // namespace zv
