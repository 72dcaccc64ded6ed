// Looking at the sound: levels, syncs, reading by hand.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "engine/api/engine.h"
#include "engine/dsp/mix.h"
#include "engine/realtime/thread_tags.h"

using namespace zv::engine;

namespace {

dsp::StereoLevel fromPages(Channel& channel, const Trail& trail, double seconds, bool rms) {
    const Channel& root = channel.root();
    const auto window = static_cast<std::uint64_t>(std::ceil(seconds * root.rate));
    std::array<Trail::Run, Trail::kRuns> runs;
    const std::size_t count = trail.last(window, runs);
    float peak[2]{};
    double power[2]{};
    for (std::size_t i = 0; i < count; ++i)
        root.sound->measure(runs[i].from, runs[i].to - runs[i].from, peak, power);
    if (!rms) return {peak[0], peak[1]};
    // Of a loop so short that the trail does not hold the window, the passes that it holds stand for all.
    std::uint64_t held = 0;
    for (std::size_t i = 0; i < count; ++i) held += runs[i].to - runs[i].from;
    const auto frames = static_cast<double>(count == Trail::kRuns ? held : window);
    return {static_cast<float>(std::sqrt(power[0] / frames)),
            static_cast<float>(std::sqrt(power[1] / frames))};
}

bool level(Engine& engine, Channel& channel, float* levels, float seconds, DWORD flags) {
    constexpr float longest = 1;
    if (!levels || !(seconds > 0) || seconds > longest) return fail(BASS_ERROR_ILLPARAM, false);
    dsp::StereoLevel found;
    if (engine.active(channel) && channel.control.meter) {
        const Metering& meter = *channel.control.meter;
        const bool rms = (flags & BASS_LEVEL_RMS) != 0;
        if (meter.trails.load(std::memory_order_relaxed)) {
            found = fromPages(channel, meter.trail, seconds, rms);
        } else {
            found = rms ? meter.meter.rms(seconds) : meter.meter.peak(seconds);
        }
    }
    if ((flags & BASS_LEVEL_VOLPAN) != 0) {
        const float volume = channel.shared.volume.load(std::memory_order_relaxed);
        found.left *= volume;
        found.right *= volume;
    }
    if ((flags & BASS_LEVEL_STEREO) != 0) {
        levels[0] = found.left;
        levels[1] = found.right;
    } else if ((flags & BASS_LEVEL_RMS) != 0) {
        levels[0] = std::sqrt((found.left * found.left + found.right * found.right) / 2);
    } else {
        levels[0] = std::max(found.left, found.right);
    }
    return succeed(true);
}

/// Frames of a channel pulled on this thread, in the channel's own channels.
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
        // What a worker would have brought: at the present position and where the loop returns to.
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

}  // namespace

extern "C" {

bool BASS_ChannelGetLevelEx(DWORD handle, float* levels, float seconds, DWORD flags) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, false);
    if (channel->decoding && channel->control.mixer == 0) return fail(BASS_ERROR_NOTAVAIL, false);
    return level(call.engine, *channel, levels, seconds, flags);
}

bool BASS_Mixer_ChannelGetLevelEx(DWORD handle, float* levels, float seconds, DWORD flags) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel || channel->control.mixer == 0) return fail(BASS_ERROR_HANDLE, false);
    return level(call.engine, *channel, levels, seconds, flags);
}

DWORD BASS_ChannelGetData(DWORD handle, void* buffer, DWORD bytes) {
    Call call;
    Engine& e = call.engine;
    const auto channel = e.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, ~DWORD{0});
    if (!buffer) return fail(BASS_ERROR_ILLPARAM, ~DWORD{0});
    if (!channel->decoding || channel->control.mixer != 0) return fail(BASS_ERROR_NOTAVAIL, ~DWORD{0});
    try {
        e.waitForCommands(call.lock);
        e.settleCommands();
        std::size_t frames = bytes / channel->frameBytes();
        HandRead reader(e, *channel);
        std::size_t done = 0;
        if (channel->sampleBytes() == sizeof(float)) {
            done = reader.read(static_cast<float*>(buffer), frames);
        } else {
            constexpr std::size_t piece = 4096;
            std::vector<float> floats(piece * channel->channels);
            auto* out = static_cast<std::int16_t*>(buffer);
            while (done < frames) {
                const std::size_t got = reader.read(floats.data(), std::min(piece, frames - done));
                dsp::toInt16(out + done * channel->channels, floats.data(), got * channel->channels);
                done += got;
                if (got == 0) break;
            }
        }
        if (done == 0 && reader.ended()) {
            channel->control.playing = false;
            return fail(BASS_ERROR_ENDED, ~DWORD{0});
        }
        return succeed(static_cast<DWORD>(done * channel->frameBytes()));
    } catch (...) {
        return fail(BASS_ERROR_MEM, ~DWORD{0});
    }
}

HSYNC BASS_ChannelSetSync(DWORD handle, DWORD type, QWORD position, SYNCPROC* procedure, void* user) {
    const Call call;
    Engine& e = call.engine;
    const auto channel = e.find(handle);
    if (!channel) return fail<HSYNC>(BASS_ERROR_HANDLE, 0);
    if (!procedure) return fail<HSYNC>(BASS_ERROR_ILLPARAM, 0);
    if ((type & ~BASS_SYNC_ONETIME) != BASS_SYNC_POS) return fail<HSYNC>(BASS_ERROR_ILLTYPE, 0);
    try {
        const HSYNC sync = e.newHandle();
        e.syncs[sync] = {handle, procedure, user, (type & BASS_SYNC_ONETIME) != 0};
        auto node = std::make_unique<SyncNode>();
        node->handle = sync;
        node->frame = position / channel->root().frameBytes();
        node->once = (type & BASS_SYNC_ONETIME) != 0;
        Command command;
        command.kind = CommandKind::AddSync;
        command.channel = channel.get();
        command.object = node.release();
        e.send(command);
        e.dispatcher.watch();
        return succeed(sync);
    } catch (...) {
        return fail<HSYNC>(BASS_ERROR_MEM, 0);
    }
}

bool BASS_ChannelRemoveSync(DWORD handle, HSYNC sync) {
    Call call;
    Engine& e = call.engine;
    if (!e.find(handle)) return fail(BASS_ERROR_HANDLE, false);
    const auto at = e.syncs.find(sync);
    if (at == e.syncs.end() || at->second.channel != handle) return fail(BASS_ERROR_HANDLE, false);
    e.removeSync(sync, call.lock);
    return succeed(true);
}

}  // extern "C"
