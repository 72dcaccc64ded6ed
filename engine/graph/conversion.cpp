#include "engine/graph/conversion.h"

#include <algorithm>

namespace zv::engine {

bool Conversion::isFile(Channel& channel) {
    AudioState& a = channel.audio;
    Plug& plug = *a.plug;
    if (!plug.plain) return false;
    plug.plain = channel.root().sound && channel.channels <= 2 && channel.kind != Kind::Split &&
                 !(channel.tempo && channel.tempo->wanted()) && !a.voldsp.active() &&
                 a.voldsp.value() == 1.0F && !hasEffects(a);
    return plug.plain;
}

Conversion::Filled Conversion::fill(Channel& channel, std::uint32_t want) {
    Plug& plug = *channel.audio.plug;
    Positions::takeBack(channel);
    if (plug.drained && plug.resampler->framesBefore(plug.fed) == 0) return Filled::ended;
    const std::size_t need = plug.resampler->inputNeeded(want);
    while (plug.pending < need) {
        float* to = plug.in.data() + plug.pending * 2;
        if (plug.drained) {
            std::fill_n(to, (need - plug.pending) * 2, 0.0F);
            plug.pending = need;
            break;
        }
        const View piece = pull_.stereo(channel, static_cast<std::uint32_t>(need - plug.pending));
        if (piece.frames == 0) {
            if (!piece.ended) return Filled::dry;
            plug.drained = true;
            continue;
        }
        std::copy_n(piece.data, std::size_t{piece.frames} * 2, to);
        plug.pending += piece.frames;
        plug.fed += piece.frames;
    }
    return plug.drained && plug.resampler->framesBefore(plug.fed) == 0 ? Filled::ended : Filled::all;
}

void Conversion::take(Channel& channel, std::uint32_t frames, bool make) {
    Plug& plug = *channel.audio.plug;
    const std::size_t need = plug.resampler->inputNeeded(frames);
    const std::span<const float> in(plug.in.data(), need * 2);
    if (make) {
        plug.resampler->process(in, {plug.out.data(), std::size_t{frames} * 2});
    } else {
        plug.resampler->take(in);
    }
    plug.pending -= need;
    std::copy_n(plug.in.data() + need * 2, plug.pending * 2, plug.in.data());
}

View Conversion::pull(Channel& channel, std::uint32_t want) {
    Plug& plug = *channel.audio.plug;
    View view;
    const Filled filled = fill(channel, want);
    view.ended = filled == Filled::ended;
    if (filled != Filled::all) return view;
    if (plug.drained) {
        // It ends where its source does, not where the block does.
        want =
            static_cast<std::uint32_t>(std::min<std::uint64_t>(want, plug.resampler->framesBefore(plug.fed)));
        plug.pending = plug.resampler->inputNeeded(want);
    }
    take(channel, want, true);
    view.data = plug.out.data();
    view.frames = want;
    return view;
}

}  // namespace zv::engine
