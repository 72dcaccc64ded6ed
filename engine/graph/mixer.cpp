#include "engine/graph/mixer.h"

#include <algorithm>
#include <span>

#include "engine/dsp/mix.h"

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

/// Notes the frames of sound that lies in pages: their level is computed on demand. Measures computed sound now,
/// because its buffer is used again.
void measure(Channel& channel, const View& view) {
    Metering& meter = *channel.audio.plug->meter;
    const bool trails = view.source != View::kNoSource;
    if (meter.trails.load(std::memory_order_relaxed) != trails) {
        meter.trails.store(trails, std::memory_order_relaxed);
        trails ? meter.trail.reset() : meter.meter.reset();
    }
    if (trails) {
        meter.trail.add(view.source, view.frames, view.gain);
    } else {
        meter.meter.feed(view.data, view.frames, view.gain);
    }
}

/// What of a converted file was heard since it stood at `from`: its levels come from there.
void noteHeard(Channel& channel, std::uint64_t from) {
    Metering& meter = *channel.audio.plug->meter;
    const Channel& root = channel.root();
    const AudioState& a = root.audio;
    const std::uint64_t to = root.shared.heard.load(std::memory_order_relaxed);
    if (!meter.trails.exchange(true, std::memory_order_relaxed)) meter.trail.reset();
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

/// The volume slide of a channel went on for `frames` frames of a block.
void wentOn(AudioState& a, std::uint32_t frames, std::uint64_t block) {
    a.mixDone = frames + (a.mixBlock == block ? a.mixDone : 0);
    a.mixBlock = block;
}

}  // namespace

/// Frames that are mixed in one part: within them no converted channel comes to the end of its sound or of a slide.
std::uint32_t Mixer::evenPart(Channel* const& first, std::uint32_t frames) {
    std::uint64_t part = frames;
    for (Channel* channel = first; channel;) {
        Channel* const next = channel->audio.next;  // one that stops leaves the list
        if (channel->audio.timed) part = std::min(part, std::max<std::uint64_t>(1, timed_.until(*channel)));
        channel = next;
    }
    return stretchOf(first, part);
}

std::uint32_t Mixer::stretchOf(Channel* first, std::uint64_t part) {
    for (const Channel* channel = first; channel; channel = channel->audio.next) {
        const AudioState& a = channel->audio;
        if (a.plug->resampler && a.volume.active()) part = std::min(part, a.volume.left());
    }
    for (Channel* channel = first; channel; channel = channel->audio.next) {
        Plug& plug = *channel->audio.plug;
        if (!plug.resampler || channel->audio.volume.active() || !Conversion::isFile(*channel)) continue;
        if (conversion_.fill(*channel, static_cast<std::uint32_t>(part)) != Conversion::Filled::all ||
            !plug.drained)
            continue;
        part = std::min(part, plug.resampler->framesBefore(plug.fed));
    }
    return static_cast<std::uint32_t>(part);
}

void Mixer::mixInputs(Channel* const& first, float* out, std::uint32_t frames) {
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

/// Adds a channel to the group that is converted together; false: it must be converted alone.
bool Mixer::joinGroup(Channel& channel, std::uint32_t frames, ConversionGroups& groups) {
    AudioState& a = channel.audio;
    if (a.volume.active() || !Conversion::isFile(channel) || !groups.takes(*a.plug->resampler)) return false;
    if (conversion_.fill(channel, frames) != Conversion::Filled::all) return false;
    const std::uint64_t from = channel.root().shared.heard.load(std::memory_order_relaxed);
    Conversion::take(channel, frames, false);
    groups.add(*a.plug->resampler, a.volume.value());
    if (a.dry) playback_.setDry(channel, false);
    positions_.publish(channel);
    noteHeard(channel, from);
    return true;
}

void Mixer::mixPart(Channel* first, float* out, std::uint32_t frames, ConversionGroups& groups) {
    Batch batch(out, frames);
    for (Channel* channel = first; channel;) {
        Channel* next = channel->audio.next;
        AudioState& a = channel->audio;
        View view;
        if (a.volume.goesOn(frames) && !a.plug->resampler) {
            view = pull_.plain(*channel, frames);
            const bool inPages = view.source != View::kNoSource;
            const bool formed = !view.mono || (inPages && !a.volume.curved());
            if (view.frames == frames && !view.own && formed) {
                measure(*channel, view);
                batch.add(view, a.volume);
                if (a.volume.active()) {
                    a.volume.advance(frames);
                    wentOn(a, frames, time_.block);
                }
                if (a.dry) playback_.setDry(*channel, false);
                positions_.publish(*channel);
                channel = next;
                continue;
            }
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

void Mixer::mixInput(Channel& channel, float* out, std::uint32_t frames, View view) {
    AudioState& a = channel.audio;
    std::uint32_t done = 0;
    bool over = view.ended;
    const bool noted = a.plug->resampler && Conversion::isFile(channel);
    const std::uint64_t from = channel.root().shared.heard.load(std::memory_order_relaxed);
    while (done < frames && !over) {
        if (view.frames == 0) {
            std::uint32_t want = frames - done;
            if (a.volume.active())
                want = static_cast<std::uint32_t>(std::min<std::uint64_t>(want, a.volume.left()));
            view = a.plug->resampler ? conversion_.pull(channel, want) : pull_.plain(channel, want);
            if (view.frames == 0) {
                over = view.ended;
                break;
            }
        }
        const View heard = pull_.finished(view);
        if (!noted) measure(channel, view.source != View::kNoSource ? view : heard);
        a.volume.mix(out + std::size_t{done} * 2, heard.data, view.frames);
        done += view.frames;
        over = a.volume.active() && a.volume.advance(view.frames) && a.volume.stopsAtEnd();
        view.frames = 0;
    }
    wentOn(a, frames, time_.block);
    if (done < frames) {
        a.plug->meter->meter.feedSilence(frames - done);
        // The slide goes on for the frames without sound.
        if (a.volume.active() && a.volume.advance(frames - done)) over |= a.volume.stopsAtEnd();
    }
    if (over) {
        playback_.finish(channel);
        return;
    }
    playback_.setDry(channel, done < frames);
    positions_.publish(channel);
    if (noted) noteHeard(channel, from);
}

}  // namespace zv::engine
