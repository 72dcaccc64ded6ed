// Of engine/bass.h, from "channels": states, playing, positions, flags, tags.
#include <algorithm>
#include <cmath>
#include <string>

#include "engine/api/playing.h"

using namespace zv::engine;

namespace {

/// Moves a channel; false with the code left.
bool setPosition(Engine& engine, Channel& channel, QWORD position) {
    Channel& root = channel.root();
    if (!root.sound) return fail(BASS_ERROR_NOTAVAIL, false);
    const std::uint64_t frame = position / root.frameBytes();
    if (frame > root.sound->length()) return fail(BASS_ERROR_POSITION, false);
    sendMove(engine, channel, frame);
    return succeed(true);
}

bool setLoopPoint(Channel& root, QWORD position, bool end) {
    if (!root.sound) return fail(BASS_ERROR_NOTAVAIL, false);
    const std::uint64_t length = root.sound->length();
    const bool none = position == BASS_NO_POSITION;
    const std::uint64_t frame = none ? length : position / root.frameBytes();
    if (frame > length) return fail(BASS_ERROR_POSITION, false);
    if (end) {
        root.control.end = frame >= length ? ~std::uint64_t{0} : frame;
        root.sound->setEnd(root.control.end);
    } else {
        if (none) return fail(BASS_ERROR_POSITION, false);
        root.control.loopStart = frame;
        root.sound->setLoopStart(frame);
    }
    return succeed(true);
}

/// Loop or end changed: the tempo channel's lane is made anew at once where its source is in memory, else by a worker.
void rangeChanged(Engine& engine, Channel& channel) {
    const auto& sound = channel.root().sound;
    if (channel.tempo && (engine.offline() || (sound && sound->readyAt(sound->focus()))))
        channel.tempo->work();
    engine.workers.wake();
}

}  // namespace

extern "C" {

DWORD BASS_ChannelIsActive(DWORD handle) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, BASS_ACTIVE_STOPPED);
    setError(BASS_OK);
    if (channel->control.paused) return BASS_ACTIVE_PAUSED;
    if (!call.engine.active(*channel)) return BASS_ACTIVE_STOPPED;
    // Only what comes from outside stalls; a file whose decoder is a moment late is playing.
    const bool stalled = !channel->root().sound && channel->shared.stalled.load(std::memory_order_relaxed);
    return stalled ? BASS_ACTIVE_STALLED : BASS_ACTIVE_PLAYING;
}

bool BASS_ChannelGetInfo(DWORD handle, BASS_CHANNELINFO* info) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, false);
    if (!info) return fail(BASS_ERROR_ILLPARAM, false);
    const DWORD loop = channel->root().control.loop ? BASS_SAMPLE_LOOP : 0;
    *info = {channel->rate, channel->channels, channel->flags | loop, static_cast<DWORD>(channel->kind),
             channel->bits};
    return succeed(true);
}

const char* BASS_ChannelGetTags(DWORD handle, DWORD tags) {
    thread_local std::string text;
    if (tags != BASS_TAG_META) return fail<const char*>(BASS_ERROR_ILLPARAM, nullptr);
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail<const char*>(BASS_ERROR_HANDLE, nullptr);
    if (channel->live) text = channel->live->told();
    if (!channel->live || text.empty()) return fail<const char*>(BASS_ERROR_NOTAVAIL, nullptr);
    return succeed(text.c_str());
}

QWORD BASS_ChannelGetLength(DWORD handle, DWORD mode) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, BASS_NO_POSITION);
    const Channel& root = channel->root();
    if (!root.sound || mode != BASS_POS_BYTE) return fail(BASS_ERROR_NOTAVAIL, BASS_NO_POSITION);
    return succeed<QWORD>(root.sound->length() * root.frameBytes());
}

QWORD BASS_ChannelGetPosition(DWORD handle, DWORD mode) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, BASS_NO_POSITION);
    Channel& root = channel->root();
    std::uint64_t frame = 0;
    switch (mode) {
        case BASS_POS_BYTE:
            frame = positionOf(*channel);
            break;
        case BASS_POS_LOOP:
            frame = root.control.loopStart;
            break;
        case BASS_POS_END:
            frame = root.sound ? std::min(root.control.end, root.sound->length()) : root.control.end;
            if (frame == ~std::uint64_t{0}) return fail(BASS_ERROR_NOTAVAIL, BASS_NO_POSITION);
            break;
        default:
            return fail(BASS_ERROR_NOTAVAIL, BASS_NO_POSITION);
    }
    return succeed<QWORD>(frame * root.frameBytes());
}

bool BASS_ChannelSetPosition(DWORD handle, QWORD position, DWORD mode) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, false);
    switch (mode) {
        case BASS_POS_BYTE:
            return setPosition(call.engine, *channel, position);
        case BASS_POS_LOOP:
        case BASS_POS_END: {
            const bool done = setLoopPoint(channel->root(), position, mode == BASS_POS_END);
            if (done) rangeChanged(call.engine, *channel);
            return done;
        }
        default:
            return fail(BASS_ERROR_NOTAVAIL, false);
    }
}

double BASS_ChannelBytes2Seconds(DWORD handle, QWORD position) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, -1.0);
    const Channel& root = channel->root();
    return succeed(static_cast<double>(position) / root.frameBytes() / root.rate);
}

QWORD BASS_ChannelSeconds2Bytes(DWORD handle, double seconds) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, BASS_NO_POSITION);
    constexpr double most = 1e9;
    if (!(seconds >= 0) || seconds > most) return fail(BASS_ERROR_ILLPARAM, BASS_NO_POSITION);
    const Channel& root = channel->root();
    // A frame that the division fell short of by a hair is still that frame.
    const auto frame = static_cast<std::uint64_t>(std::floor(seconds * root.rate + 1e-6));
    return succeed<QWORD>(frame * root.frameBytes());
}

DWORD BASS_ChannelFlags(DWORD handle, DWORD flags, DWORD mask) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, ~DWORD{0});
    Channel& root = channel->root();
    if ((mask & BASS_SAMPLE_LOOP) != 0) {
        root.control.loop = (flags & BASS_SAMPLE_LOOP) != 0;
        if (root.sound) {
            root.sound->setLoop(root.control.loop);
            rangeChanged(call.engine, *channel);
        }
    }
    return succeed(channel->flags | (root.control.loop ? BASS_SAMPLE_LOOP : 0));
}

bool BASS_ChannelPlay(DWORD handle, bool restart) {
    const Call call;
    Engine& e = call.engine;
    const auto channel = e.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, false);
    if (channel->decoding && channel->control.mixer == 0) return fail(BASS_ERROR_DECODE, false);
    if (restart && channel->root().sound) setPosition(e, *channel, 0);
    sendPlay(e, *channel);
    if (!channel->decoding && (channel->flags & BASS_STREAM_AUTOFREE) != 0 &&
        std::ranges::find(e.freedWhenStopped, handle) == e.freedWhenStopped.end())
        e.freedWhenStopped.push_back(handle);
    return succeed(true);
}

bool BASS_ChannelStart(DWORD handle) { return BASS_ChannelPlay(handle, false); }

bool BASS_ChannelPause(DWORD handle) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, false);
    if (channel->control.paused) return fail(BASS_ERROR_ALREADY, false);
    if (!call.engine.active(*channel)) return fail(BASS_ERROR_NOPLAY, false);
    channel->control.playing = false;
    channel->control.paused = true;
    sendStop(call.engine, *channel);
    return succeed(true);
}

bool BASS_ChannelStop(DWORD handle) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, false);
    channel->control.playing = channel->control.paused = false;
    sendStop(call.engine, *channel);
    return succeed(true);
}

bool BASS_ChannelUpdate(DWORD handle, DWORD) {
    const Call call;
    return call.engine.find(handle) ? succeed(true) : fail(BASS_ERROR_HANDLE, false);
}

}  // extern "C"
