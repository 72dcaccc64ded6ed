#include "engine/graph/playback.h"

namespace zv::engine {

Playback::Ends Playback::listOf(const AudioState& a) {
    if (a.parent) return {&a.parent->audio.first, &a.parent->audio.last};
    if (a.device < 0) return {};
    List& output = outputs_[static_cast<std::size_t>(a.device)];
    return {&output.first, &output.last};
}

/// Tells the file behind a channel that it will be read, or no more. What lies behind a split is read while one of its
/// readers sounds.
void Playback::soundsOrRests(Channel& channel, bool sounds) {
    Channel& root = channel.root();
    if (root.sound) root.sound->setSounding(sounds);
    if (!root.hub) return;
    SplitHub& hub = *root.hub;
    const bool before = hub.sounding > 0;
    hub.sounding += sounds ? 1 : -1;
    if (before != (hub.sounding > 0)) soundsOrRests(*hub.source, sounds);
}

void Playback::link(Channel& channel) {
    AudioState& a = channel.audio;
    const auto [first, last] = listOf(a);
    if (!first) return;
    a.previous = *last;
    a.next = nullptr;
    (*last ? (*last)->audio.next : *first) = &channel;
    *last = &channel;
    if (!channel.isBus()) ++sounding_;
    soundsOrRests(channel, true);
}

void Playback::unlink(Channel& channel) {
    AudioState& a = channel.audio;
    const auto [first, last] = listOf(a);
    if (!first) return;
    (a.previous ? a.previous->audio.next : *first) = a.next;
    (a.next ? a.next->audio.previous : *last) = a.previous;
    if (!channel.isBus()) --sounding_;
    soundsOrRests(channel, false);
}

void Playback::start(Channel& channel, std::uint32_t generation) {
    AudioState& a = channel.audio;
    a.generation = generation;
    if (a.playing) return;
    a.playing = true;
    if (a.plug) {
        if (a.plug->drained || a.inTail) a.plug->restart();
        a.plug->meter->meter.reset();
        a.plug->meter->trail.reset();
        a.plug->plain = true;
        a.plug->align(time_.clock);
    }
    // Its end may have moved meanwhile. If not, the next read finds it again.
    a.inTail = false;
    // A reader that stood still goes on with what is sounding now.
    if (channel.kind == Kind::Split) a.hubPosition = channel.hub->written;
    link(channel);
}

void Playback::stop(Channel& channel) {
    if (!channel.audio.playing) return;
    channel.audio.playing = false;
    unlink(channel);
    setDry(channel, false);
}

void Playback::finish(Channel& channel) {
    if (!channel.audio.playing) return;
    positions_.publish(channel);
    stop(channel);
    channel.shared.endedGeneration.store(channel.audio.generation, std::memory_order_release);
}

void Playback::unplug(Channel& channel, Trash& trash) {
    AudioState& a = channel.audio;
    stop(channel);
    a.parent = nullptr;
    a.device = -1;
    trash.add(a.plug);
    a.plug = nullptr;
}

void Playback::setDry(Channel& channel, bool dry) {
    AudioState& a = channel.audio;
    if (a.dry == dry) return;
    a.dry = dry;
    channel.shared.stalled.store(dry, std::memory_order_relaxed);
    if (dry && channel.root().sound) underruns_.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace zv::engine
