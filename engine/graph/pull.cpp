// How each kind of channel yields sound.
#include <algorithm>
#include <cmath>

#include "engine/dsp/mix.h"
#include "engine/graph/graph.h"
#include "engine/realtime/thread_tags.h"

namespace zv::engine {
namespace {

/// A reader of a split that is farther behind than this part of a second goes on with the present.
constexpr std::uint32_t kMostLagPart = 16;
constexpr int kTempoTurns = 4;
constexpr double kRounding = 1e-6;           ///< frames: of positions that were added up
constexpr std::uint32_t kStepBackPart = 40;  ///< of a second: 25 ms

}  // namespace

void Graph::setDry(Channel& channel, bool dry) {
    AudioState& a = channel.audio;
    if (a.dry == dry) return;
    a.dry = dry;
    channel.shared.stalled.store(dry, std::memory_order_relaxed);
    if (dry && channel.root().sound) sourceUnderruns.fetch_add(1, std::memory_order_relaxed);
}

/// Positions from..to (without `to`) were passed: whoever waits for one of them is told.
void Graph::passed(Channel& channel, std::uint64_t from, std::uint64_t to) {
    AudioState& a = channel.audio;
    if (to <= a.firstSync) return;
    bool fired = false;
    for (SyncNode* node = a.syncs; node; node = node->next) {
        if (node->frame < from || node->frame >= to) continue;
        if (!syncEvents.push({node->handle, channel.handle, channel.root().audio.moves, node->slides}))
            continue;
        fired = true;
        if (node == a.timed) a.timedDue = true;
        if (node->once) node->frame = ~std::uint64_t{0};
    }
    if (fired) findFirstSync(a);
}

/// Whether the channel is converted to the rate of what it is plugged into: then it is heard later than
/// pulled.
static bool converted(const Channel& channel) { return channel.audio.plug && channel.audio.plug->resampler; }

/// Frames from..to of a file were delivered through `channel`, which is the file itself or stretches it.
void Graph::delivered(Channel& channel, Channel& source, std::uint64_t from, std::uint64_t to) {
    if (converted(channel)) return;
    passed(channel, from, to);
    if (&source != &channel) passed(source, from, to);
}

/// The same for one that is converted: what was heard since the last time, up to `to`.
void Graph::heard(Channel& channel, Channel& source, std::uint64_t to) {
    if (!channel.audio.syncs && !source.audio.syncs) return;
    const AudioState& a = source.audio;
    const std::uint64_t from = source.shared.heard.load(std::memory_order_relaxed);
    const auto tell = [&](std::uint64_t first, std::uint64_t last) {
        passed(channel, first, last);
        if (&source != &channel) passed(source, first, last);
    };
    if (to >= from) {
        tell(from, to);
        const Plug& plug = *channel.audio.plug;
        const bool came = to > from || plug.fed == 0;  // else the end has been told
        if (came && plug.drained && to >= source.sound->range().end) tell(to, to + 1);
    } else if (a.wrapFrom > a.wrapTo && to >= a.wrapTo) {
        tell(from, a.wrapFrom + 1);
        tell(a.wrapTo, to);
    }
}

void Graph::publishPosition(Channel& channel) {
    Channel& root = channel.root();
    const AudioState& a = root.audio;
    const bool later = converted(channel);
    std::uint64_t position = a.position, held = 0;
    if (later) {
        // What the conversion holds has not been heard yet; silence behind the end is no part of the file.
        const Plug& plug = *channel.audio.plug;
        const std::uint64_t taken = plug.fed - (channel.audio.inTail ? channel.audio.tailDone : 0);
        const double ahead = static_cast<double>(taken) - plug.resampler->position() - kRounding;
        held = static_cast<std::uint64_t>(std::ceil(std::max(0.0, ahead)));
    }
    if (held > 0) {
        const std::uint64_t since = position - a.wrapTo;
        const bool wrapped = a.wrapFrom > a.wrapTo && position >= a.wrapTo && since < held;
        position = wrapped ? a.wrapFrom - std::min(a.wrapFrom - a.wrapTo, held - since)
                           : position - std::min(position, held);
    } else if (root.sound && position >= root.sound->end()) {
        const PlayRange range = root.sound->range();
        position = range.loop ? range.loopStart : range.end;
    }
    if (later && root.sound) heard(channel, root, position);
    root.shared.heard.store(position, std::memory_order_relaxed);
}

/// The resampler reads ahead. If loop or end changed since, returns the frames not yet heard to the source.
void Graph::takeBack(Channel& channel) {
    Channel& root = channel.root();
    AudioState &outer = channel.audio, &a = root.audio;
    Plug& plug = *outer.plug;
    if (!root.sound || outer.stretched || plug.pending > 0) return;
    const bool over = plug.drained || outer.inTail;
    if (!over && a.wrapFrom <= a.wrapTo) return;
    const auto unheard = static_cast<std::uint64_t>(std::max(0.0, plug.resampler->held()));
    const PlayRange range = root.sound->range();
    if (over) {
        const std::uint64_t tail = outer.inTail ? outer.tailDone : 0;
        const std::uint64_t silence = plug.resampler->fed() - plug.fed + tail;
        if (silence > unheard || (!range.loop && range.end <= a.position)) return;
        plug.resampler->takeBack(static_cast<std::size_t>(silence));
        plug.fed -= tail;
        plug.drained = outer.inTail = false;
        return;
    }
    const std::uint64_t since = a.position - a.wrapTo;
    const bool same = range.loop && range.end == a.wrapFrom && range.loopStart == a.wrapTo;
    if (same || a.position < a.wrapTo || since > unheard) return;
    plug.resampler->takeBack(static_cast<std::size_t>(since));
    plug.fed -= since;
    a.position = a.wrapFrom;
    a.wrapFrom = a.wrapTo = 0;
    if (channel.tempo) channel.tempo->passed(0, a.position);
}

View Graph::readFile(Channel& channel, std::uint32_t want, Channel& through) {
    AudioState& a = channel.audio;
    PagedSound& sound = *channel.sound;
    const PlayRange range = sound.range();
    std::uint64_t at = a.position;
    View view;
    if (at >= range.end) {
        if (through.audio.syncs || channel.audio.syncs) delivered(through, channel, range.end, range.end + 1);
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
    if (through.audio.syncs || channel.audio.syncs) delivered(through, channel, at, at + view.frames);
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
    AudioState& a = channel.audio;
    if (a.syncs) passed(channel, a.position, a.position + view.frames);
    a.position += view.frames;
    return view;
}

/// The same of a tempo channel and its source, whose position went from `from` to `to`: on, or over the end
/// of a loop. Small steps back are those of a sound that is laid over itself.
void Graph::passedStretched(Channel& channel, std::uint64_t from, std::uint64_t to) {
    Channel& source = *channel.source;
    if (to >= from) {
        delivered(channel, source, from, to);
        return;
    }
    const PlayRange range = source.sound->range();
    if (!range.loop || from - to < channel.rate / kStepBackPart) return;
    source.audio.wrapFrom = range.end;
    source.audio.wrapTo = range.loopStart;
    delivered(channel, source, from, range.end + 1);
    delivered(channel, source, range.loopStart, to);
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
    for (int turn = 0; turn < kTempoTurns; ++turn) {
        if (tempo.neutral()) {
            if (a.stretched) {
                a.stretched = false;
                passedStretched(channel, source.audio.position, tempo.sourceFrame());
                source.audio.position = tempo.sourceFrame();
            }
            const auto run = static_cast<std::uint32_t>(std::min<std::size_t>(want, tempo.neutralRun()));
            view = readFile(source, run, channel);
            if (view.frames == 0) return view;
            tempo.passed(view.frames, source.audio.position);
            a.tempoBlock = block_;
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
            a.tempoBlock = block_;
            source.audio.position = now;
            source.sound->setFocus(now);
            passedStretched(channel, before, now);
            return view;
        }
        view = {};
        if (tempo.neutral()) continue;
        view.ended = tempo.ended();
        if (view.ended) {
            const std::uint64_t end = source.sound->range().end;
            delivered(channel, source, before, end + 1);
        }
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
    assertAudioThread();
    want = std::min(want, kBlock);
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

View Graph::toStereo(Channel& channel, View view) {
    if (channel.channels == 2 || channel.kind == Kind::Split || channel.kind == Kind::Mixer) return view;
    dsp::foldToStereo(stereo_.data(), view.data, view.frames, channel.channels);
    view.data = stereo_.data();
    view.own = true;
    return view;
}

/// Whether an effect of its chain would change a sample.
static bool hasEffects(const AudioState& a) {
    return a.chain && std::ranges::any_of(a.chain->stages, [](const Chain::Stage& stage) {
               return stage.effect && !stage.effect->bypassed();
           });
}

View Graph::throughChain(Channel& channel, View view) {
    AudioState& a = channel.audio;
    const bool slides = a.voldsp.active();
    if (slides) {
        a.chainDone = view.frames + (a.chainBlock == block_ ? a.chainDone : 0);
        a.chainBlock = block_;
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

View Graph::pullStereo(Channel& channel, std::uint32_t want) {
    assertAudioThread();
    AudioState& a = channel.audio;
    want = std::min(want, kBlock);
    if (!a.inTail) {
        const View view = pullNative(channel, want);
        if (view.frames > 0) return throughChain(channel, toStereo(channel, view));
        if (!view.ended) return view;
    }
    return pullTail(channel, want);
}

View Graph::pullPlain(Channel& channel, std::uint32_t want) {
    AudioState& a = channel.audio;
    const bool bus = channel.kind == Kind::Split || channel.kind == Kind::Mixer;
    if (a.inTail || a.voldsp.active() || (channel.channels > 2 && !bus) || hasEffects(a))
        return pullStereo(channel, want);
    View view = pullNative(channel, std::min(want, kBlock));
    if (view.frames == 0 && view.ended) return pullTail(channel, std::min(want, kBlock));
    view.gain = a.voldsp.value();
    view.mono = channel.channels == 1 && !bus;
    return view;
}

/// In stereo, its gain applied.
View Graph::finished(View view) {
    if (view.mono) {
        dsp::monoToStereo(stereo_.data(), view.data, view.frames);
        view.data = stereo_.data();
    } else if (view.gain == 1.0F) {
        return view;
    }
    const std::size_t samples = std::size_t{view.frames} * 2;
    dsp::scale(stereo_.data(), view.data, samples, view.gain);
    view.data = stereo_.data();
    view.own = true;
    if (view.gain != 1.0F) view.source = View::kNoSource;
    view.gain = 1;
    view.mono = false;
    return view;
}

/// Behind the end: silence through the chain, for as long as its tail.
View Graph::pullTail(Channel& channel, std::uint32_t want) {
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

/// Whether what is converted is the file itself, in one or two channels: then its levels are those of its pages,
/// and it may be converted together with others. Once something is set it is not, until its next start, because
/// when exactly that ends depends on how far the conversion has read ahead.
bool Graph::convertsFile(Channel& channel) {
    AudioState& a = channel.audio;
    Plug& plug = *a.plug;
    if (!plug.plain) return false;
    plug.plain = channel.root().sound && channel.channels <= 2 && channel.kind != Kind::Split &&
                 !(channel.tempo && channel.tempo->wanted()) && !a.voldsp.active() &&
                 a.voldsp.value() == 1.0F && !hasEffects(a);
    return plug.plain;
}

/// A conversion begins in the phase of one that ran since the beginning of time: so all of a rate have one phase.
void Graph::alignConversion(Channel& channel) const {
    const Plug* plug = channel.audio.plug;
    if (plug && plug->resampler && plug->fed == 0 && plug->pending == 0) plug->resampler->align(clock_);
}

Graph::Filled Graph::fillConverted(Channel& channel, std::uint32_t want) {
    Plug& plug = *channel.audio.plug;
    takeBack(channel);
    if (plug.drained && plug.resampler->framesBefore(plug.fed) == 0) return Filled::ended;
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

/// Hands the conversion what it needs for the next `frames`; `make`: at once, into plug.out.
void Graph::takeConverted(Channel& channel, std::uint32_t frames, bool make) {
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

View Graph::pullConverted(Channel& channel, std::uint32_t want) {
    Plug& plug = *channel.audio.plug;
    View view;
    const Filled filled = fillConverted(channel, want);
    view.ended = filled == Filled::ended;
    if (filled != Filled::all) return view;
    if (plug.drained) {
        // It ends where its source does, not where the block does.
        want =
            static_cast<std::uint32_t>(std::min<std::uint64_t>(want, plug.resampler->framesBefore(plug.fed)));
        plug.pending = plug.resampler->inputNeeded(want);
    }
    takeConverted(channel, want, true);
    view.data = plug.out.data();
    view.frames = want;
    view.own = true;
    return view;
}

}  // namespace zv::engine
