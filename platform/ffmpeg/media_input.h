/// The sound of one file or address: its packets, and what the codec makes of them. Private to
/// platform/ffmpeg.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/ports.h"
#include "platform/common/vorbis_comment.h"
#include "platform/ffmpeg/packet_decoder.h"

namespace zv {

/// Owned and called by one thread at a time; only abort() may come from another.
class MediaInput {
  public:
    MediaInput(const MediaInput&) = delete;
    MediaInput& operator=(const MediaInput&) = delete;
    ~MediaInput() = default;

    /// Opens a file by its path. `error` as openFileDecoder has it.
    static std::unique_ptr<MediaInput> openFile(const std::string& path, int& error);

    /// Connects to an http address, whatever it sends. `error` as openUrlDecoder has it.
    static std::unique_ptr<MediaInput> connectTo(const std::string& url, std::uint32_t timeoutMs, int& error);
    /// The first bytes that the address sends, up to `most`: what is there after 16 of them, or with `whole` all until
    /// it ends. They are still to be read after a short look, not after a whole one.
    std::string look(std::size_t most, bool whole);
    /// Finds the sound in what the address sends; `segmented`: in what its playlist of segments names. `error` as above.
    bool openConnected(bool segmented, int& error);
    /// What the stream tells of the packet read last, as engine::Decoder::told().
    std::string told() const;

    /// Reads the next packet of the sound. False at the end, after a failure and past the deadline.
    bool readPacket();
    const AVPacket& packet() const { return *packet_; }

    /// As PacketDecoder::decode().
    Yield decode(const AVPacket* packet, std::vector<float>& out) { return decoder_.decode(packet, out); }
    /// Goes to the packet at or before `ticks` (as far as the container can tell) and empties the codec.
    bool seek(std::int64_t ticks);
    /// Goes to the packet that begins at byte `byte` of the file and empties the codec.
    bool seekByte(std::int64_t byte);
    /// Takes a codec as new.
    bool renew();
    /// Goes back to the first packet by opening the file anew.
    bool reopen();

    /// Format of what decode() appends: that of the first frame decoded.
    const engine::SoundFormat& format() const { return decoder_.format(); }
    const AVStream& stream() const { return *stream_; }
    const AVCodecContext& codec() const { return decoder_.codec(); }
    const AVInputFormat& container() const { return *context_->iformat; }
    std::int64_t fileSize() const;
    /// Of a file.
    const std::string& path() const { return path_; }

    /// From now on, everything that takes longer than `limit` in all is given up.
    void setLimit(std::chrono::milliseconds limit);
    /// Gives up whatever waits, now and later. [any]
    void abort() { aborted_ = true; }
    bool timedOut() const;

  private:
    MediaInput() = default;
    int connect();
    int open(std::int64_t probeBytes);
    /// Takes over what the packet just read, or the container, says of the song on air.
    void hearSong();
    const char* containers() const;
    static int interrupted(void* self);

    std::string path_, address_;
    SongName song_;  ///< of the packet read last, where the container names songs
    bool network_ = false, segmented_ = false;
    IoHandle connection_;  ///< of an address; outlives the container that reads from it
    FormatHandle context_;
    PacketDecoder decoder_;
    AVStream* stream_ = nullptr;
    PacketHandle packet_;
    std::chrono::steady_clock::time_point deadline_ = std::chrono::steady_clock::time_point::max();
    std::atomic<bool> aborted_ = false;
};

}  // namespace zv
