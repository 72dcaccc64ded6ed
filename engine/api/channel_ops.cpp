#include "engine/api/channel_ops.h"

namespace zv::engine {

void sendVolume(Engine& engine, Channel& channel, float value, std::uint32_t ms, bool logarithmic,
                bool stops) {
    ControlState& c = channel.control;
    Command command;
    command.kind = CommandKind::Volume;
    command.channel = &channel;
    command.value = value;
    command.ms = ms;
    command.flags = (logarithmic ? kSlideLog : 0) | (stops ? kSlideStops : 0);
    command.b = ++c.volumeCommands;
    c.volumeSlides = ms != 0;
    if (ms == 0) {
        c.volume = value;
        if (stops) c.playing = c.paused = false;
    } else {
        // Until the slide has begun the caller sees where it will begin.
        const bool heard =
            channel.shared.appliedVolume.load(std::memory_order_acquire) + 1 == c.volumeCommands;
        if (heard) c.volume = channel.shared.volume.load(std::memory_order_relaxed);
    }
    engine.send(command);
}

void sendVoldsp(Engine& engine, Channel& channel, float value, std::uint32_t ms, bool logarithmic) {
    ControlState& c = channel.control;
    Command command;
    command.kind = CommandKind::Voldsp;
    command.channel = &channel;
    command.value = value;
    command.ms = ms;
    command.flags = logarithmic ? kSlideLog : 0;
    command.b = ++c.voldspCommands;
    c.voldspSlides = ms != 0;
    if (ms == 0) {
        c.voldsp = value;
    } else if (channel.shared.appliedVoldsp.load(std::memory_order_acquire) + 1 == c.voldspCommands) {
        c.voldsp = channel.shared.voldsp.load(std::memory_order_relaxed);
    }
    engine.send(command);
}

void primeTempo(Engine& engine, Channel& channel, std::uint64_t frame) {
    // What a disk has not given yet is left to the workers: the caller never waits for it.
    if (channel.tempo && (engine.offline() || channel.root().sound->readyAt(frame)))
        channel.tempo->prime(frame);
}

void sendMove(Engine& engine, Channel& channel, std::uint64_t frame) {
    Channel& root = channel.root();
    ControlState& c = root.control;
    ++c.moves;
    c.movedTo = frame;
    c.readTo.reset();
    if (root.sound) {
        root.sound->setHead(frame);
        if (!root.sound->sounding()) root.sound->setFocus(frame);
        primeTempo(engine, channel, frame);
    }
    Command command;
    command.kind = CommandKind::Move;
    command.channel = &root;
    command.a = frame;
    command.b = c.moves;
    engine.send(command);
    engine.workers.wake();
}

void sendPlay(Engine& engine, Channel& channel) {
    ControlState& c = channel.control;
    c.playing = true;
    c.paused = false;
    Command command;
    command.kind = CommandKind::Play;
    command.channel = &channel;
    command.a = ++c.generation;
    engine.send(command);
    engine.workers.wake();
    engine.dispatcher.watch();
}

void sendStop(Engine& engine, Channel& channel) {
    Command command;
    command.kind = CommandKind::Stop;
    command.channel = &channel;
    engine.send(command);
}

std::uint64_t positionOf(Channel& channel) {
    Channel& root = channel.root();
    if (root.control.readTo) return *root.control.readTo;
    if (root.shared.appliedMoves.load(std::memory_order_acquire) != root.control.moves)
        return root.control.movedTo;
    return root.shared.heard.load(std::memory_order_relaxed);
}

void settleRead(Engine& engine, Channel& channel) {
    if (const auto frame = channel.root().control.readTo) sendMove(engine, channel, *frame);
}

std::shared_ptr<Channel> prepareChannel(Engine& engine, Kind kind, DWORD flags, const SoundFormat& format) {
    auto channel = std::make_shared<Channel>();
    channel->kind = kind;
    channel->flags = flags & ~(BASS_UNICODE | BASS_SAMPLE_LOOP);
    channel->decoding = (flags & BASS_STREAM_DECODE) != 0;
    channel->rate = format.rate;
    channel->channels = format.channels;
    channel->bits = format.bits;
    if (channel->decoding) {
        // A decoding channel is ready to be pulled until someone stops it.
        channel->control.playing = true;
        channel->control.generation = 1;
        return channel;
    }
    int output = selectedOutput();
    const auto usable = [&](int n) {
        return n >= 0 && n < kMostDevices && engine.outputInitialised[static_cast<std::size_t>(n)];
    };
    for (int n = 0; n < kMostDevices && !usable(output); ++n)
        if (usable(n)) output = n;
    if (!usable(output)) return fail(BASS_ERROR_INIT, nullptr);
    channel->device = output;
    return channel;
}

DWORD publishChannel(Engine& engine, const std::shared_ptr<Channel>& channel) {
    engine.adopt(channel);
    if ((channel->kind == Kind::Mixer)) channel->audio.bus.resize(std::size_t{kBlock} * 2);
    if (!channel->decoding) {
        Command command;
        command.kind = CommandKind::ToDevice;
        command.channel = channel.get();
        command.a = static_cast<std::uint64_t>(channel->device);
        auto* plug = new Plug(channel->rate, engine.graph.rate());
        channel->control.meter = plug->meter;
        command.object = plug;
        engine.send(command);
        engine.rankOutputs();
    }
    return succeed(channel->handle);
}

}  // namespace zv::engine
