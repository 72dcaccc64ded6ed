// How each kind of channel yields sound.
#include <algorithm>
#include <cmath>

#include "engine/dsp/mix.h"
#include "engine/graph.h"

namespace zv {
namespace {

/// A reader of a split that is farther behind than this part of a second goes on with the present.
constexpr std::uint32_t kMostLagPart = 16;
constexpr int kTempoTurns = 4;

}  // namespace

void Graph::setDry(Channel& channel, bool dry) {
    AudioState& a = channel.audio;
    if (a.dry == dry) return;
    a.dry = dry;
    channel.shared.stalled.store(dry, std::memory_order_relaxed);
    if (dry && channel.root().sound) starvations.fetch_add(1, std::memory_order_relaxed);
}

/// Positions from..to (without `to`) were passed: whoever waits for one of them is told.
void Graph::passed(Channel& channel, std::uint64_t from, std::uint64_t to) {
    AudioState& a = channel.audio;
    if (to <= a.firstSync) return;
    bool fired = false;
    for (SyncNode* node = a.syncs; node; node = node->next) {
        if (node->frame < from || node->frame >= to) continue;
        if (!syncEvents.push({node->handle, channel.handle, channel.root().audio.moves})) continue;
        fired = true;
        if (node->once) node->frame = ~std::uint64_t{0};
    }
    if (fired) findFirstSync(a);
}

void Graph::publishPosition(Channel& channel) {
    Channel& root = channel.root();
    std::uint64_t position = root.audio.position;
    if (root.sound) {
        const PlayRange range = root.sound->range();
        if (position >= range.end) position = range.loop ? range.loopStart : range.end;
    }
    const Plug* plug = channel.audio.plug;
    if (plug && plug->resampler) {
        // What the conversion holds has not been heard yet; a wrap in it neither.
        const auto held = static_cast<std::uint64_t>(std::max(0.0, plug->resampler->held()));
        const AudioState& a = root.audio;
        const std::uint64_t since = position - a.wrapTo;
        if (a.wrapFrom > a.wrapTo && position >= a.wrapTo && since < held) {
            position = a.wrapFrom - std::min(a.wrapFrom - a.wrapTo, held - since);
        } else {
            position -= std::min(position, held);
        }
    }
    root.shared.heard.store(position, std::memory_order_relaxed);
}

View Graph::readFile(Channel& channel, std::uint32_t want, Channel* heardBy) {
    AudioState& a = channel.audio;
    PagedSound& sound = *channel.sound;
    const PlayRange range = sound.range();
    std::uint64_t at = a.position;
    View view;
    if (at >= range.end) {
        if (channel.audio.syncs) passed(channel, range.end, range.end + 1);
        if (heardBy && heardBy->audio.syncs) passed(*heardBy, range.end, range.end + 1);
        if (!range.loop || range.end == 0) {
            a.position = range.end;
            view.ended = true;
            return view;
        }
        a.wrapFrom = at;
        at = a.position = a.wrapTo = range.loopStart;
    }
    const float* page = sound.page(at / PagedSound::kPage);
    if (!page) {
        sound.setFocus(at);
        return view;
    }
    const std::uint64_t offset = at % PagedSound::kPage;
    view.frames = static_cast<std::uint32_t>(
        std::min<std::uint64_t>({want, range.end - at, PagedSound::kPage - offset}));
    view.data = page + offset * channel.channels;
    if (channel.channels == 2) view.source = at;
    if (channel.audio.syncs) passed(channel, at, at + view.frames);
    if (heardBy && heardBy->audio.syncs) passed(*heardBy, at, at + view.frames);
    a.position = at + view.frames;
    sound.setFocus(a.position);
    return view;
}

View Graph::readLive(Channel& channel, std::uint32_t want) {
    View view;
    const std::size_t samples = std::min(native_.size(), std::size_t{want} * channel.channels);
    view.frames = static_cast<std::uint32_t>(channel.live->read({native_.data(), samples}));
    view.data = native_.data();
    view.own = true;
    view.ended = view.frames == 0 && channel.live->ended();
    channel.audio.position += view.frames;
    return view;
}

View Graph::readTempo(Channel& channel, std::uint32_t want) {
    AudioState& a = channel.audio;
    View view;
    if (a.orphan) {
        view.ended = true;
        return view;
    }
    Channel& source = *channel.source;
    if (!channel.tempo) return pullNative(source, want);
    TempoProcessor& tempo = *channel.tempo;
    if (const PlayRange range = source.sound->range(); range != a.range) {
        a.range = range;
        tempo.setRange(range);
    }
    for (int turn = 0; turn < kTempoTurns; ++turn) {
        if (tempo.neutral()) {
            if (a.stretched) {
                a.stretched = false;
                source.audio.position = tempo.sourceFrame();
            }
            const auto run = static_cast<std::uint32_t>(std::min<std::size_t>(want, tempo.neutralRun()));
            view = readFile(source, run, &channel);
            if (view.frames > 0) tempo.passed(view.frames, source.audio.position);
            return view;
        }
        a.stretched = true;
        const std::uint64_t before = source.audio.position;
        if (const std::span<const float> there = tempo.view(want); !there.empty()) {
            view.frames = want;
            view.data = there.data();
        } else {
            view.frames = static_cast<std::uint32_t>(
                tempo.read({native_.data(), std::min(native_.size(), std::size_t{want} * channel.channels)}));
            view.data = native_.data();
            view.own = true;
        }
        const std::uint64_t now = tempo.sourceFrame();
        if (view.frames > 0) {
            source.audio.position = now;
            source.sound->setFocus(now);
            if (now >= before) {
                passed(channel, before, now);
                passed(source, before, now);
            } else if (a.range.loop) {
                passed(channel, before, a.range.end);
                passed(channel, a.range.loopStart, now);
            }
            return view;
        }
        view = {};
        if (tempo.neutral()) continue;
        view.ended = tempo.ended();
        if (view.ended) passed(channel, before, a.range.end + 1);
        return view;
    }
    return view;
}

View Graph::readSplit(Channel& channel, std::uint32_t want) {
    AudioState& a = channel.audio;
    SplitHub& hub = *channel.hub;
    View view;
    if (a.orphan) {
        view.ended = true;
        return view;
    }
    std::uint64_t there = hub.written - a.hubPosition;
    const bool inGraph = a.parent || a.device >= 0;
    if (there > hub.frames || (inGraph && there > channel.rate / kMostLagPart)) {
        a.hubPosition = inGraph ? hub.written : hub.written - hub.frames;
        there = hub.written - a.hubPosition;
    }
    if (there == 0) {
        const View fresh = pullStereo(*hub.source, want);
        if (fresh.frames == 0) return fresh;
        const std::uint64_t place = hub.written % hub.frames;
        const std::uint64_t first = std::min<std::uint64_t>(fresh.frames, hub.frames - place);
        std::copy_n(fresh.data, first * 2, hub.ring.data() + place * 2);
        std::copy_n(fresh.data + first * 2, (fresh.frames - first) * 2, hub.ring.data());
        hub.written += fresh.frames;
        there = fresh.frames;
    }
    const std::uint64_t place = a.hubPosition % hub.frames;
    view.frames = static_cast<std::uint32_t>(std::min<std::uint64_t>({want, there, hub.frames - place}));
    view.data = hub.ring.data() + place * 2;
    a.hubPosition += view.frames;
    if (a.syncs) passed(channel, a.position, a.position + view.frames);
    a.position += view.frames;
    return view;
}

View Graph::readMixer(Channel& channel, std::uint32_t want) {
    AudioState& a = channel.audio;
    View view;
    if (!a.first && (channel.flags & BASS_MIXER_NONSTOP) == 0) return view;
    view.frames = std::min(want, kBlock);
    std::fill_n(a.bus.begin(), std::size_t{view.frames} * 2, 0.0F);
    mixInputs(a.first, a.bus.data(), view.frames);
    view.data = a.bus.data();
    view.own = true;
    if (a.syncs) passed(channel, a.position, a.position + view.frames);
    a.position += view.frames;
    return view;
}

View Graph::pullNative(Channel& channel, std::uint32_t want) {
    want = std::min(want, kBlock);
    switch (channel.kind) {
        case Kind::File:
        case Kind::Module:
            return readFile(channel, want, nullptr);
        case Kind::Url:
        case Kind::Record:
            return readLive(channel, want);
        case Kind::Tempo:
            return readTempo(channel, want);
        case Kind::Split:
            return readSplit(channel, want);
        case Kind::Mixer:
            return readMixer(channel, want);
    }
    return {};
}

View Graph::toStereo(Channel& channel, View view) {
    if (channel.channels == 2 || channel.kind == Kind::Split || channel.kind == Kind::Mixer) return view;
    dsp::foldToStereo(stereo_.data(), view.data, view.frames, channel.channels);
    view.data = stereo_.data();
    view.own = true;
    return view;
}

View Graph::throughChain(Channel& channel, View view) {
    AudioState& a = channel.audio;
    const bool slides = a.voldsp.active();
    if (slides) {
        a.chainDone = view.frames + (a.chainBlock == block_ ? a.chainDone : 0);
        a.chainBlock = block_;
    }
    const bool gained = slides || a.voldsp.value() != 1.0F;
    bool effects = false;
    if (a.chain)
        for (const auto& stage : a.chain->stages) effects |= stage.effect && !stage.effect->bypassed();
    if (!gained && !effects) return view;
    float* data = stereo_.data();
    if (view.own) {
        data = const_cast<float*>(view.data);
    } else {
        std::copy_n(view.data, std::size_t{view.frames} * 2, data);
    }
    view.data = data;
    view.own = true;
    view.source = View::kNoSource;
    if (effects) channel.shared.dirty.store(true, std::memory_order_relaxed);
    if (!a.chain) {
        a.voldsp.scale(data, view.frames);
        return view;
    }
    for (const auto& stage : a.chain->stages) {
        if (!stage.effect) {
            a.voldsp.scale(data, view.frames);
        } else if (!stage.effect->bypassed()) {
            stage.effect->process(data, view.frames);
        }
    }
    return view;
}

View Graph::pullStereo(Channel& channel, std::uint32_t want) {
    AudioState& a = channel.audio;
    want = std::min(want, kBlock);
    View view;
    if (!a.inTail) {
        view = pullNative(channel, want);
        if (view.frames > 0) return throughChain(channel, toStereo(channel, view));
        if (!view.ended) return view;
        a.inTail = true;
        a.tailLeft = static_cast<std::uint64_t>(std::llround(a.tailSeconds * channel.rate));
    }
    view.frames = static_cast<std::uint32_t>(std::min<std::uint64_t>(want, a.tailLeft));
    view.ended = view.frames == 0;
    if (view.frames == 0) return view;
    a.tailLeft -= view.frames;
    std::fill_n(stereo_.begin(), std::size_t{view.frames} * 2, 0.0F);
    view.data = stereo_.data();
    view.own = true;
    return throughChain(channel, view);
}

View Graph::pullConverted(Channel& channel, std::uint32_t want) {
    Plug& plug = *channel.audio.plug;
    View view;
    if (plug.drained && plug.resampler->position() >= static_cast<double>(plug.fed)) {
        view.ended = true;
        return view;
    }
    const std::size_t need = plug.resampler->inputNeeded(want);
    while (plug.pending < need) {
        float* to = plug.in.data() + plug.pending * 2;
        if (plug.drained) {
            std::fill_n(to, (need - plug.pending) * 2, 0.0F);
            plug.pending = need;
            break;
        }
        const View piece = pullStereo(channel, static_cast<std::uint32_t>(need - plug.pending));
        if (piece.frames == 0) {
            if (!piece.ended) return view;
            plug.drained = true;
            continue;
        }
        std::copy_n(piece.data, std::size_t{piece.frames} * 2, to);
        plug.pending += piece.frames;
        plug.fed += piece.frames;
    }
    plug.resampler->process({plug.in.data(), need * 2}, {plug.out.data(), std::size_t{want} * 2});
    plug.pending -= need;
    std::copy_n(plug.in.data() + need * 2, plug.pending * 2, plug.in.data());
    view.data = plug.out.data();
    view.frames = want;
    view.own = true;
    return view;
}

}  // namespace zv
