// Of engine/bass.h, from "channels": data read by hand.
#include <algorithm>

#include "engine/api/playing.h"
#include "engine/dsp/mix.h"
#include "engine/tempo/lane.h"

using namespace zv::engine;

namespace {

/// Frames of a channel pulled through the graph on this thread, in the channel's own channels.
class HandRead {
  public:
    HandRead(Engine& engine, Channel& channel) : engine_(engine), channel_(channel) {}

    std::size_t read(float* out, std::size_t frames) {
        std::size_t done = 0;
        while (done < frames) {
            load();
            const std::size_t got = piece(out + done * channel_.channels, frames - done);
            if (got == 0) break;
            done += got;
        }
        return done;
    }
    bool ended() const { return ended_; }

  private:
    void load() {
        // Loads what workers load on air: the page at the present position and the one at the loop's start.
        for (const auto& [handle, other] : engine_.channels) {
            PagedSound* sound = other->sound.get();
            if (!sound || (!sound->sounding() && &channel_.root() != other.get() && !feedsMe(*other)))
                continue;
            sound->ensure(sound->focus(), PagedSound::kPage);
            if (const PlayRange range = sound->range(); range.loop)
                sound->ensure(range.loopStart, PagedSound::kPage);
        }
        if (channel_.tempo && channel_.tempo->workDue()) channel_.tempo->work();
    }
    bool feedsMe(const Channel& other) const {
        const Channel* from = &channel_;
        while (from) {
            if (from == &other) return true;
            from = from->source ? from->source.get() : from->hub ? from->hub->source.get() : nullptr;
        }
        return false;
    }
    std::size_t piece(float* out, std::size_t frames) {
        Graph& graph = engine_.graph;
        const auto want = static_cast<std::uint32_t>(std::min<std::size_t>(frames, kBlock));
        graph.acquire();
        std::size_t got = 0;
        {
            const AudioSection section;
            // More than two channels are read as they are: the chain works in stereo.
            const bool raw = channel_.channels > 2 && channel_.kind != Kind::Split;
            const View view = raw ? graph.pullNative(channel_, want) : graph.pullStereo(channel_, want);
            got = view.frames;
            ended_ = view.frames == 0 && view.ended;
            if (channel_.channels == 2 || raw) {
                std::copy_n(view.data, got * channel_.channels, out);
            } else if (channel_.channels == 1) {
                for (std::size_t i = 0; i < got; ++i)
                    out[i] = (view.data[i * 2] + view.data[i * 2 + 1]) * 0.5F;
            } else {
                for (std::size_t i = 0; i < got; ++i)
                    for (std::size_t c = 0; c < channel_.channels; ++c)
                        out[i * channel_.channels + c] = c < 2 ? view.data[i * 2 + c] : 0.0F;
            }
            graph.publishPosition(channel_);
            if (!engine_.outputs.anyOpen()) graph.passTime(0);
        }
        graph.release();
        return got;
    }

    Engine& engine_;
    Channel& channel_;
    bool ended_ = false;
};

/// Whether nothing stands between the channel and its file, and nobody else reads it.
bool isPlainFile(const Engine& engine, const Channel& channel) {
    const ControlState& c = channel.control;
    if (!channel.sound || !channel.decoding || c.mixer != 0 || !c.effects.empty()) return false;
    if (c.voldspCommands != 0 || c.tail != 0) return false;
    const auto reads = [&](const auto& entry) {
        const Channel& other = *entry.second;
        return other.source.get() == &channel || (other.hub && other.hub->source.get() == &channel);
    };
    const auto waits = [&](const auto& entry) { return entry.second.channel == channel.handle; };
    return std::ranges::none_of(engine.channels, reads) && std::ranges::none_of(engine.syncs, waits);
}

/// Frames of a plain file straight from its pages: neither graph nor lock is held meanwhile.
class FileRead {
  public:
    FileRead(PagedSound& sound, std::uint64_t at) : sound_(sound), at_(at) {}
    std::size_t read(float* out, std::size_t frames) {
        const std::uint32_t channels = sound_.format().channels;
        std::size_t done = 0;
        while (done < frames) {
            const std::size_t piece = std::min<std::size_t>(frames - done, PagedSound::kPage);
            sound_.setFocus(at_);
            const std::size_t got =
                readInOrder(sound_, at_, {out + done * channels, piece * channels}, channels, sound_.range());
            sound_.tidy();
            done += got;
            if (got < piece) break;
        }
        ended_ = done == 0;
        return done;
    }
    bool ended() const { return ended_; }
    std::uint64_t at() const { return at_; }

  private:
    PagedSound& sound_;
    std::uint64_t at_;
    bool ended_ = false;
};

/// Reads `frames` frames into the caller's buffer, as 16-bit samples or as they are.
template <typename Reader>
std::size_t readInto(Reader& reader, const Channel& channel, void* buffer, std::size_t frames) {
    if (channel.sampleBytes() == sizeof(float)) return reader.read(static_cast<float*>(buffer), frames);
    constexpr std::size_t piece = 4096;
    std::vector<float> floats(piece * channel.channels);
    auto* out = static_cast<std::int16_t*>(buffer);
    std::size_t done = 0;
    while (done < frames) {
        const std::size_t got = reader.read(floats.data(), std::min(piece, frames - done));
        dsp::toInt16(out + done * channel.channels, floats.data(), got * channel.channels);
        done += got;
        if (got == 0) break;
    }
    return done;
}

}  // namespace

extern "C" {

DWORD BASS_ChannelGetData(DWORD handle, void* buffer, DWORD bytes) {
    assertControlThread();
    Call call;
    Engine& e = call.engine;
    const auto channel = e.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, ~DWORD{0});
    if (!buffer) return fail(BASS_ERROR_ILLPARAM, ~DWORD{0});
    if (!channel->decoding || channel->control.mixer != 0) return fail(BASS_ERROR_NOTAVAIL, ~DWORD{0});
    const std::size_t frames = bytes / channel->frameBytes();
    std::size_t done = 0;
    bool ended = false;
    try {
        if (isPlainFile(e, *channel)) {
            FileRead reader(*channel->sound, positionOf(*channel));
            const std::uint32_t moves = channel->control.moves;
            call.lock.unlock();
            done = readInto(reader, *channel, buffer, frames);
            ended = done == 0 && frames > 0;
            call.lock.lock();
            // A set position in between holds.
            if (moves == channel->control.moves) channel->control.readTo = reader.at();
        } else {
            settleRead(e, *channel);
            e.waitForCommands(call.lock);
            HandRead reader(e, *channel);
            done = readInto(reader, *channel, buffer, frames);
            ended = done == 0 && reader.ended();
        }
    } catch (...) {
        return fail(BASS_ERROR_MEM, ~DWORD{0});
    }
    if (ended) {
        channel->control.playing = false;
        return fail(BASS_ERROR_ENDED, ~DWORD{0});
    }
    return succeed(static_cast<DWORD>(done * channel->frameBytes()));
}

}  // extern "C"
