#include "engine/graph/pull.h"

#include <algorithm>
#include <cmath>

#include "engine/dsp/mix.h"
#include "engine/realtime/thread_tags.h"

namespace zv::engine {
namespace {

/// A reader of a split that is farther behind than this part of a second goes on with the present.
constexpr std::uint32_t kMostLagPart = 16;
constexpr int kTempoTurns = 4;
constexpr std::uint32_t kMostChannels = 64;

}  // namespace

Pull::Pull(Positions& positions, Syncs& syncs, const RenderTime& time)
    : positions_(positions), syncs_(syncs), time_(time) {
    stereo_.resize(std::size_t{kBlock} * 2);
    native_.resize(std::size_t{kBlock} * kMostChannels);
}

/// Frames of a channel without a file were delivered.
void Pull::advance(Channel& channel, std::uint32_t frames) {
    AudioState& a = channel.audio;
    if (a.syncs) syncs_.passed(channel, a.position, a.position + frames);
    a.position += frames;
}

View Pull::readFile(Channel& channel, std::uint32_t want, Channel& through) {
    AudioState& a = channel.audio;
    PagedSound& sound = *channel.sound;
    const PlayRange range = sound.range();
    std::uint64_t at = a.position;
    View view;
    if (at >= range.end) {
        if (through.audio.syncs || channel.audio.syncs)
            positions_.delivered(through, channel, range.end, range.end + 1);
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
    if (channel.channels <= 2) view.source = at;
    if (through.audio.syncs || channel.audio.syncs)
        positions_.delivered(through, channel, at, at + view.frames);
    a.position = at + view.frames;
    sound.setFocus(a.position);
    return view;
}

View Pull::readLive(Channel& channel, std::uint32_t want) {
    View view;
    const std::size_t samples = std::min(native_.size(), std::size_t{want} * channel.channels);
    view.frames = static_cast<std::uint32_t>(channel.live->read({native_.data(), samples}));
    view.data = native_.data();
    view.own = true;
    view.ended = view.frames == 0 && channel.live->ended();
    advance(channel, view.frames);
    return view;
}

View Pull::readTempo(Channel& channel, std::uint32_t want) {
    AudioState& a = channel.audio;
    View view;
    if (a.orphan) {
        view.ended = true;
        return view;
    }
    Channel& source = *channel.source;
    if (!channel.tempo) return native(source, want);
    TempoProcessor& tempo = *channel.tempo;
    for (int turn = 0; turn < kTempoTurns; ++turn) {
        if (tempo.neutral()) {
            if (a.stretched) {
                a.stretched = false;
                positions_.stretched(channel, source.audio.position, tempo.sourceFrame());
                source.audio.position = tempo.sourceFrame();
            }
            const auto run = static_cast<std::uint32_t>(std::min<std::size_t>(want, tempo.neutralRun()));
            view = readFile(source, run, channel);
            if (view.frames == 0) return view;
            tempo.passed(view.frames, source.audio.position);
            a.tempoBlock = time_.block;
            if (!tempo.fades()) return view;
            const std::size_t samples = std::size_t{view.frames} * channel.channels;
            std::copy_n(view.data, samples, native_.data());
            tempo.fade({native_.data(), samples});
            view.data = native_.data();
            view.own = true;
            view.source = View::kNoSource;
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
            a.tempoBlock = time_.block;
            source.audio.position = now;
            source.sound->setFocus(now);
            positions_.stretched(channel, before, now);
            return view;
        }
        view = {};
        if (tempo.neutral()) continue;
        view.ended = tempo.ended();
        if (view.ended) {
            const std::uint64_t end = source.sound->range().end;
            positions_.delivered(channel, source, before, end + 1);
        }
        return view;
    }
    return view;
}

View Pull::readSplit(Channel& channel, std::uint32_t want) {
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
        const View fresh = stereo(*hub.source, want);
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
    advance(channel, view.frames);
    return view;
}

View Pull::readMixer(Channel& channel, std::uint32_t want) {
    AudioState& a = channel.audio;
    View view;
    if (!a.first && (channel.flags & BASS_MIXER_NONSTOP) == 0) return view;
    view.frames = std::min(want, kBlock);
    std::fill_n(a.bus.begin(), std::size_t{view.frames} * 2, 0.0F);
    mixing_->mixInputs(a.first, a.bus.data(), view.frames);
    view.data = a.bus.data();
    advance(channel, view.frames);
    return view;
}

View Pull::native(Channel& channel, std::uint32_t want) {
    switch (channel.kind) {
        case Kind::File:
        case Kind::Module:
            return readFile(channel, want, channel);
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

View Pull::toStereo(Channel& channel, View view) {
    if (channel.channels == 2 || channel.isBus()) return view;
    dsp::foldToStereo(stereo_.data(), view.data, view.frames, channel.channels);
    view.data = stereo_.data();
    view.own = true;
    return view;
}

bool hasEffects(const AudioState& a) {
    return a.chain && std::ranges::any_of(a.chain->stages, [](const Chain::Stage& stage) {
               return stage.effect && !stage.effect->bypassed();
           });
}

View Pull::throughChain(Channel& channel, View view) {
    AudioState& a = channel.audio;
    const bool slides = a.voldsp.active();
    if (slides) {
        a.chainDone = view.frames + (a.chainBlock == time_.block ? a.chainDone : 0);
        a.chainBlock = time_.block;
    }
    const bool gained = slides || a.voldsp.value() != 1.0F;
    const bool effects = hasEffects(a);
    if (!gained && !effects) return view;
    if (effects)
        for (const auto& stage : a.chain->stages)
            if (stage.effect) stage.effect->prefetch();
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

View Pull::stereo(Channel& channel, std::uint32_t want) {
    AudioState& a = channel.audio;
    want = std::min(want, kBlock);
    if (!a.inTail) {
        const View view = native(channel, want);
        if (view.frames > 0) return throughChain(channel, toStereo(channel, view));
        if (!view.ended) return view;
    }
    return tail(channel, want);
}

View Pull::plain(Channel& channel, std::uint32_t want) {
    AudioState& a = channel.audio;
    const bool bus = channel.isBus();
    if (a.inTail || a.voldsp.active() || (channel.channels > 2 && !bus) || hasEffects(a))
        return stereo(channel, want);
    View view = native(channel, std::min(want, kBlock));
    if (view.frames == 0 && view.ended) return tail(channel, std::min(want, kBlock));
    view.gain = a.voldsp.value();
    view.mono = channel.channels == 1 && !bus;
    return view;
}

View Pull::finished(View view) {
    if (view.mono) {
        dsp::monoToStereo(stereo_.data(), view.data, view.frames);
        view.data = stereo_.data();
    } else if (view.gain == 1.0F) {
        return view;
    }
    dsp::scale(stereo_.data(), view.data, std::size_t{view.frames} * 2, view.gain);
    return {.data = stereo_.data(), .frames = view.frames, .own = true};
}

/// Behind the end: silence through the chain, for as long as its tail.
View Pull::tail(Channel& channel, std::uint32_t want) {
    AudioState& a = channel.audio;
    View view;
    if (!a.inTail) {
        a.inTail = true;
        a.tailDone = 0;
        a.tailLeft = static_cast<std::uint64_t>(std::llround(a.tailSeconds * channel.rate));
    }
    view.frames = static_cast<std::uint32_t>(std::min<std::uint64_t>(want, a.tailLeft));
    view.ended = view.frames == 0;
    if (view.frames == 0) return view;
    a.tailLeft -= view.frames;
    a.tailDone += view.frames;
    std::fill_n(stereo_.begin(), std::size_t{view.frames} * 2, 0.0F);
    view.data = stereo_.data();
    view.own = true;
    return throughChain(channel, view);
}

}  // namespace zv::engine
