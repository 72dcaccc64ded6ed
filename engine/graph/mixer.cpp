// Adding up what sounds in a mixer or on an output.
#include <algorithm>
#include <array>
#include <cmath>

#include "engine/dsp/mix.h"
#include "engine/graph/graph.h"

namespace zv::engine {
namespace {

constexpr double kHalfFrame = 0.5;
constexpr std::uint32_t kStretchedNear = 8 * kBlock, kStretchedStep = 64;

/// Sources that lie in memory as they are wait here and are added four at a time: the sum is read and written
/// once. Whatever their form, they are added in the order in which they came.
class Batch {
  public:
    Batch(float* out, std::uint32_t frames) : out_(out), frames_(frames) {}
    ~Batch() { flush(); }
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;
    void add(const View& view, const Slide& volume) {
        const Form form = volume.curved() ? Form::curved : view.mono ? Form::mono : Form::stereo;
        if (form != form_) flush();
        form_ = form;
        dsp::MixSource& source = sources_[count_] = {view.data, view.gain, volume.ramp()};
        if (form == Form::curved) {
            volume.gains(gains_[count_].data(), frames_);
            source.gains = gains_[count_].data();
        }
        if (++count_ == sources_.size()) flush();
    }
    void flush() {
        const std::span<const dsp::MixSource> held(sources_.data(), count_);
        switch (form_) {
            case Form::stereo:
                dsp::mixStereo(out_, held, frames_);
                break;
            case Form::mono:
                dsp::mixMono(out_, held, frames_);
                break;
            case Form::curved:
                dsp::mixCurved(out_, held, frames_);
                break;
        }
        count_ = 0;
    }

  private:
    enum class Form : std::uint8_t { stereo, mono, curved };
    float* out_;
    std::uint32_t frames_;
    std::array<dsp::MixSource, 4> sources_;
    std::array<std::array<float, kBlock>, 4> gains_;
    std::size_t count_ = 0;
    Form form_ = Form::stereo;
};

/// Sound from pages is only noted; what was computed is gone after this block and is measured now.
void measure(Channel& channel, const View& view) {
    Metering& meter = *channel.audio.plug->meter;
    const bool trails = view.source != View::kNoSource;
    if (meter.trails.load(std::memory_order_relaxed) != trails) {
        meter.trails.store(trails, std::memory_order_relaxed);
        meter.meter.reset();
        meter.trail.reset();
    }
    if (trails) {
        meter.trail.add(view.source, view.frames, view.gain);
    } else {
        meter.meter.feed(view.data, view.frames, view.gain);
    }
}

}  // namespace

/// Frames of the mixer before the slide of a sync is to begin; it begins here when its frame is the next one.
std::uint64_t Graph::untilTimed(Channel& channel) {
    AudioState& a = channel.audio;
    const AudioState& file = channel.root().audio;
    double at = static_cast<double>(file.position);
    if (a.plug->resampler) {
        const Plug& plug = *a.plug;
        const double held =
            static_cast<double>(plug.fed - (a.inTail ? a.tailDone : 0)) - plug.resampler->position();
        const auto since = static_cast<double>(file.position - file.wrapTo);
        const bool wrapped = file.wrapFrom > file.wrapTo && file.position >= file.wrapTo && since < held;
        at = wrapped ? static_cast<double>(file.wrapFrom) - (held - since) : at - held;
    }
    SyncNode& node = *a.timed;
    const double left = static_cast<double>(node.frame) - at;
    if (a.timedDue || (!a.stretched && left <= kHalfFrame && left > -1)) {
        Command slide;
        slide.channel = &channel;
        slide.value = node.value;
        slide.ms = node.ms;
        slide.flags = node.flags;
        slide.b = channel.shared.appliedVolume.load(std::memory_order_relaxed);
        // A stop may leave nothing to be passed: it is told here.
        if (!a.timedDue && syncEvents.push({node.handle, channel.handle, file.moves, true}) && node.once) {
            node.frame = ~std::uint64_t{0};
            findFirstSync(a);
        }
        a.timed = nullptr;
        a.timedDue = false;
        slideVolume(slide);
        return kBlock;
    }
    if (left < 0) return kBlock;
    // The position of stretched sound is known every so many frames only.
    if (a.stretched) return left < double{kStretchedNear} ? kStretchedStep : kBlock;
    return static_cast<std::uint64_t>(std::ceil(left * a.plug->rate / channel.rate - kHalfFrame));
}

/// Frames up to which the same channels are converted together: a slide, or a sound, ends behind them.
std::uint32_t Graph::evenPart(Channel* const& first, std::uint32_t frames) {
    std::uint64_t part = frames;
    for (Channel* channel = first; channel;) {
        Channel* const next = channel->audio.next;  // one that stops leaves the list
        if (channel->audio.timed) part = std::min(part, std::max<std::uint64_t>(1, untilTimed(*channel)));
        channel = next;
    }
    return stretchOf(first, part);
}

std::uint32_t Graph::stretchOf(Channel* first, std::uint64_t part) {
    for (const Channel* channel = first; channel; channel = channel->audio.next) {
        const AudioState& a = channel->audio;
        if (a.plug->resampler && a.volume.active()) part = std::min(part, a.volume.left());
    }
    for (Channel* channel = first; channel; channel = channel->audio.next) {
        Plug& plug = *channel->audio.plug;
        if (!plug.resampler || channel->audio.volume.active() || !convertsFile(*channel)) continue;
        if (fillConverted(*channel, static_cast<std::uint32_t>(part)) != Filled::all || !plug.drained)
            continue;
        part = std::min(part, plug.resampler->framesBefore(plug.fed));
    }
    return static_cast<std::uint32_t>(part);
}

void Graph::mixInputs(Channel* const& first, float* out, std::uint32_t frames) {
    ConversionGroups& groups = groups_[std::min(nested_++, kMostNested - 1)];
    while (frames > 0) {
        const std::uint32_t part = evenPart(first, frames);
        // Deeper mixers than there are groups for convert each sound by itself.
        groups.begin(nested_ <= kMostNested ? part : 0);
        mixPart(first, out, part, groups);
        groups.finish(out);
        out += std::size_t{part} * 2;
        frames -= part;
    }
    --nested_;
}

/// What of a converted file was heard since it stood at `from`: its levels come from there.
void Graph::noteHeard(Channel& channel, std::uint64_t from) {
    Metering& meter = *channel.audio.plug->meter;
    const Channel& root = channel.root();
    const AudioState& a = root.audio;
    const std::uint64_t to = root.shared.heard.load(std::memory_order_relaxed);
    if (!meter.trails.exchange(true, std::memory_order_relaxed)) {
        meter.meter.reset();
        meter.trail.reset();
    }
    const auto add = [&](std::uint64_t first, std::uint64_t last) {
        if (first < last) meter.trail.add(first, static_cast<std::uint32_t>(last - first), 1);
    };
    if (to >= from) {
        add(from, to);
    } else if (a.wrapFrom > a.wrapTo && to >= a.wrapTo) {
        add(from, a.wrapFrom);
        add(a.wrapTo, to);
    }
}

/// Puts a channel to those that are converted together; false where it must be converted alone.
bool Graph::joinGroup(Channel& channel, std::uint32_t frames, ConversionGroups& groups) {
    AudioState& a = channel.audio;
    if (a.volume.active() || !convertsFile(channel) || !groups.takes(*a.plug->resampler)) return false;
    if (fillConverted(channel, frames) != Filled::all) return false;
    const std::uint64_t from = channel.root().shared.heard.load(std::memory_order_relaxed);
    takeConverted(channel, frames, false);
    groups.add(*a.plug->resampler, a.volume.value());
    a.mixBlock = block_;
    if (a.dry) setDry(channel, false);
    publishPosition(channel);
    noteHeard(channel, from);
    return true;
}

void Graph::mixPart(Channel* first, float* out, std::uint32_t frames, ConversionGroups& groups) {
    Batch batch(out, frames);
    for (Channel* channel = first; channel;) {
        Channel* next = channel->audio.next;
        AudioState& a = channel->audio;
        View view;
        if (a.volume.goesOn(frames) && !a.plug->resampler) {
            view = pullPlain(*channel, frames);
            const bool inPages = view.source != View::kNoSource;
            const bool formed = !view.mono || (inPages && !a.volume.curved());
            if (view.frames == frames && !view.own && formed) {
                measure(*channel, view);
                batch.add(view, a.volume);
                if (a.volume.active()) {
                    a.volume.advance(frames);
                    a.mixBlock = block_;
                }
                if (a.dry) setDry(*channel, false);
                publishPosition(*channel);
                channel = next;
                continue;
            }
            view = finished(view);
        }
        if (a.plug->resampler && joinGroup(*channel, frames, groups)) {
            channel = next;
            continue;
        }
        batch.flush();
        mixInput(*channel, out, frames, view);
        channel = next;
    }
}

void Graph::mixInput(Channel& channel, float* out, std::uint32_t frames, View view) {
    AudioState& a = channel.audio;
    std::uint32_t done = 0;
    bool over = view.ended;
    const bool noted = a.plug->resampler && convertsFile(channel);
    const std::uint64_t from = channel.root().shared.heard.load(std::memory_order_relaxed);
    while (done < frames && !over) {
        if (view.frames == 0) {
            std::uint32_t want = frames - done;
            if (a.volume.active())
                want = static_cast<std::uint32_t>(std::min<std::uint64_t>(want, a.volume.left()));
            view = a.plug->resampler ? pullConverted(channel, want) : pullStereo(channel, want);
            if (view.frames == 0) {
                over = view.ended;
                break;
            }
        }
        if (!noted) measure(channel, view);
        a.volume.mix(out + std::size_t{done} * 2, view.data, view.frames);
        done += view.frames;
        over = a.volume.active() && a.volume.advance(view.frames) && a.volume.stopsAtEnd();
        view.frames = 0;
    }
    a.mixBlock = block_;
    if (done < frames) {
        a.plug->meter->meter.feedSilence(frames - done);
        // Time goes on where its sound does not.
        if (a.volume.active() && a.volume.advance(frames - done)) over |= a.volume.stopsAtEnd();
    }
    if (over) {
        finish(channel);
        return;
    }
    setDry(channel, done < frames);
    publishPosition(channel);
    if (noted) noteHeard(channel, from);
}

}  // namespace zv::engine
