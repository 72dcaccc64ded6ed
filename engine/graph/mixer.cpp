// Adding up what sounds in a mixer or on an output.
#include <algorithm>
#include <array>

#include "engine/dsp/mix.h"
#include "engine/graph/graph.h"

namespace zv::engine {
namespace {

/// Sources that lie in memory as they are wait here and are added four at a time: the sum is read and written
/// once. Whatever their form, they are added in the order in which they came.
class Batch {
  public:
    Batch(float* out, std::uint32_t frames) : out_(out), frames_(frames) {}
    ~Batch() { flush(); }
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;
    void add(const View& view, const dsp::GainRamp& gain) {
        if (view.mono != mono_) flush();
        mono_ = view.mono;
        sources_[count_++] = {view.data, view.gain, gain};
        if (count_ == sources_.size()) flush();
    }
    void flush() {
        const std::span<const dsp::MixSource> held(sources_.data(), count_);
        mono_ ? dsp::mixMono(out_, held, frames_) : dsp::mixStereo(out_, held, frames_);
        count_ = 0;
    }

  private:
    float* out_;
    std::uint32_t frames_;
    std::array<dsp::MixSource, 4> sources_;
    std::size_t count_ = 0;
    bool mono_ = false;
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

void Graph::mixInputs(Channel* first, float* out, std::uint32_t frames) {
    Batch batch(out, frames);
    for (Channel* channel = first; channel;) {
        Channel* next = channel->audio.next;
        AudioState& a = channel->audio;
        View view;
        if (a.volume.ramps(frames) && !a.plug->resampler) {
            view = pullPlain(*channel, frames);
            const bool inPages = view.source != View::kNoSource;
            if (view.frames == frames && !view.own && (inPages || !view.mono)) {
                measure(*channel, view);
                batch.add(view, a.volume.ramp());
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
        batch.flush();
        mixInput(*channel, out, frames, view);
        channel = next;
    }
}

void Graph::mixInput(Channel& channel, float* out, std::uint32_t frames, View view) {
    AudioState& a = channel.audio;
    std::uint32_t done = 0;
    bool over = view.ended;
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
        measure(channel, view);
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
}

}  // namespace zv::engine
