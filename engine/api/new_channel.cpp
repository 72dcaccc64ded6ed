#include "engine/api/new_channel.h"

namespace zv::engine {

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
        auto* plug = new Plug(channel->rate, engine.graph.rate());
        channel->control.meter = plug->meter;
        engine.send({.kind = CommandKind::ToDevice,
                     .channel = channel.get(),
                     .object = plug,
                     .a = static_cast<std::uint64_t>(channel->device)});
        engine.rankOutputs();
    }
    return succeed(channel->handle);
}

}  // namespace zv::engine
