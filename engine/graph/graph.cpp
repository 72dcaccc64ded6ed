#include "engine/graph/graph.h"

#include <algorithm>
#include <cmath>
#include <thread>

#include "engine/dsp/mix.h"
#include "engine/realtime/thread_tags.h"

namespace zv::engine {
namespace {

constexpr std::uint32_t kMostChannels = 64;
constexpr std::size_t kSyncEvents = 4096;
constexpr double kOutputGainSeconds = 0.01;
constexpr std::uint32_t kRestAfterSeconds = 2;
constexpr float kInaudible = 1e-6F;  ///< -120 dB

/// Buses never stop; one counts as sounding when an input does.
bool isBus(const Channel& channel) { return channel.kind == Kind::Mixer || channel.kind == Kind::Split; }

}  // namespace

Graph::Graph() : syncEvents(kSyncEvents) {
    for (Output& output : outputs_) output.bus.resize(std::size_t{kBlock} * 2);
    stereo_.resize(std::size_t{kBlock} * 2);
    native_.resize(std::size_t{kBlock} * kMostChannels);
}

bool Graph::tryAcquire() {
    if (busy_.exchange(true, std::memory_order_acquire)) return false;
    renders.fetch_add(1, std::memory_order_seq_cst);
    return true;
}

void Graph::acquire() {
    assertNotAudioThread();
    while (!tryAcquire()) std::this_thread::yield();
}

void Graph::release() {
    renders.fetch_add(1, std::memory_order_seq_cst);
    busy_.store(false, std::memory_order_release);
}

void Graph::restart() {
    for (Output& output : outputs_) output.gain.set(1);
    outputGain.store(1, std::memory_order_relaxed);
    sourceUnderruns.store(0, std::memory_order_relaxed);
    silentFrames_ = clock_ = 0;
    quiet_.store(false, std::memory_order_release);
    SyncEvent event;
    while (syncEvents.pop(event)) {
    }
}

void Graph::obeyCommands() {
    const AudioSection section;
    applyCommands();
}

void Graph::applyCommands() {
    assertAudioThread();
    if (commands.empty()) return;
    quiet_.store(false, std::memory_order_release);
    Command command;
    while (commands.pop(command)) apply(command);
}

void Graph::renderBlock(std::uint32_t frames) {
    assertAudioThread();
    ++block_;
    const float wanted = outputGain.load(std::memory_order_relaxed);
    const bool rested = mayRest_ && silentFrames_ >= std::uint64_t{kRestAfterSeconds} * rate();
    for (Output& output : outputs_) {
        output.played = output.first != nullptr;
        if (!output.played || rested) output.gain.set(wanted);
        if (!output.played) continue;
        std::fill_n(output.bus.begin(), std::size_t{frames} * 2, 0.0F);
        mixInputs(output.first, output.bus.data(), frames);
        if (!output.gain.active() && output.gain.value() != wanted)
            output.gain.start(wanted, static_cast<std::uint64_t>(kOutputGainSeconds * rate()), false, false);
        if (output.gain.active() || wanted != 1.0F) output.gain.scale(output.bus.data(), frames);
        dsp::makeHarmless({output.bus.data(), std::size_t{frames} * 2});
    }
    passTime(frames);
    countSilence(frames);
    clock_ += frames;
}

/// A bus may go on without a source: its reverb, a conversion. Only what came out tells.
void Graph::countSilence(std::uint32_t frames) {
    if (!mayRest_) return;
    bool silent = sounding_ == 0 && busSyncs_ == 0 && !slides_;
    for (const Output& output : outputs_) {
        if (!silent) break;
        if (!output.played) continue;
        silent = !output.gain.active() &&
                 std::all_of(output.bus.begin(), output.bus.begin() + std::ptrdiff_t{2} * frames,
                             [](float sample) { return std::abs(sample) < kInaudible; });
    }
    silentFrames_ = silent ? silentFrames_ + frames : 0;
    quiet_.store(silentFrames_ >= std::uint64_t{kRestAfterSeconds} * rate(), std::memory_order_release);
}

// ---- lists of sounding channels

Graph::List Graph::listOf(const AudioState& a) {
    if (a.parent) return {&a.parent->audio.first, &a.parent->audio.last};
    if (a.device < 0) return {};
    Output& output = outputs_[static_cast<std::size_t>(a.device)];
    return {&output.first, &output.last};
}

/// Tells the file behind a channel that it will be read, or no more. What lies behind a split is read while one of its
/// readers sounds.
void Graph::soundsOrRests(Channel& channel, bool sounds) {
    Channel& root = channel.root();
    if (root.sound) root.sound->setSounding(sounds);
    if (!root.hub) return;
    SplitHub& hub = *root.hub;
    const bool before = hub.sounding > 0;
    hub.sounding += sounds ? 1 : -1;
    if (before != (hub.sounding > 0)) soundsOrRests(*hub.source, sounds);
}

void Graph::link(Channel& channel) {
    AudioState& a = channel.audio;
    const auto [first, last] = listOf(a);
    if (!first) return;
    a.previous = *last;
    a.next = nullptr;
    (*last ? (*last)->audio.next : *first) = &channel;
    *last = &channel;
    if (!isBus(channel)) ++sounding_;
    soundsOrRests(channel, true);
}

void Graph::unlink(Channel& channel) {
    AudioState& a = channel.audio;
    const auto [first, last] = listOf(a);
    if (!first || (!a.previous && *first != &channel)) return;
    (a.previous ? a.previous->audio.next : *first) = a.next;
    (a.next ? a.next->audio.previous : *last) = a.previous;
    a.previous = a.next = nullptr;
    if (!isBus(channel)) --sounding_;
    soundsOrRests(channel, false);
}

void Graph::start(Channel& channel, std::uint32_t generation) {
    AudioState& a = channel.audio;
    a.generation = generation;
    if (a.playing) return;
    a.playing = true;
    if (a.plug) {
        if (a.plug->drained || a.inTail) a.plug->restart();
        a.plug->meter->meter.reset();
        a.plug->meter->trail.reset();
        a.plug->plain = true;
        alignConversion(channel);
    }
    // Its end may have moved meanwhile; if not, it finds it again.
    a.inTail = false;
    // A reader that stood still goes on with what is sounding now.
    if (channel.kind == Kind::Split) a.hubPosition = channel.hub->written;
    link(channel);
}

void Graph::stop(Channel& channel) {
    if (!channel.audio.playing) return;
    channel.audio.playing = false;
    unlink(channel);
    setDry(channel, false);
}

void Graph::finish(Channel& channel) {
    if (!channel.audio.playing) return;
    publishPosition(channel);
    stop(channel);
    channel.shared.endedGeneration.store(channel.audio.generation, std::memory_order_release);
}

void Graph::unplug(Channel& channel) {
    AudioState& a = channel.audio;
    if (a.playing) unlink(channel);
    a.parent = nullptr;
    a.device = -1;
    trash.add(a.plug);
    a.plug = nullptr;
}

void Graph::move(Channel& channel, std::uint64_t frame, std::uint32_t moves) {
    AudioState& a = channel.audio;
    a.position = frame;
    a.wrapFrom = a.wrapTo = 0;
    a.moves = moves;
    Channel* level = &channel;
    while (level) {
        AudioState& upper = level->audio;
        upper.inTail = upper.timedDue = false;
        if (upper.plug) {
            upper.plug->restart();
            alignConversion(*level);
        }
        if (level->tempo) level->tempo->restart(frame);
        upper.stretched = false;
        level = upper.user;
    }
    if (channel.sound) channel.sound->setFocus(frame);
    channel.shared.heard.store(frame, std::memory_order_relaxed);
    channel.shared.appliedMoves.store(moves, std::memory_order_release);
}

void Graph::free(const Command& command) {
    Channel& channel = *command.channel;
    stop(channel);
    unplug(channel);
    forgetSlides(channel);
    for (const SyncNode* node = channel.audio.syncs; node; node = node->next) expect(channel, -1);
    if (channel.source && channel.source->audio.user == &channel) channel.source->audio.user = nullptr;
    trash.add(command.object);
}

void Graph::findFirstSync(AudioState& a) {
    a.firstSync = ~std::uint64_t{0};
    for (const SyncNode* node = a.syncs; node; node = node->next)
        a.firstSync = std::min(a.firstSync, node->frame);
}

void Graph::expect(const Channel& channel, int syncs) {
    if (isBus(channel)) busSyncs_ += syncs;
}

void Graph::apply(const Command& command) {
    Channel& channel = *command.channel;
    AudioState& a = channel.audio;
    switch (command.kind) {
        case CommandKind::Play:
            start(channel, static_cast<std::uint32_t>(command.a));
            break;
        case CommandKind::Stop:
            stop(channel);
            break;
        case CommandKind::Move:
            move(channel, command.a, static_cast<std::uint32_t>(command.b));
            break;
        case CommandKind::Volume:
            slideVolume(command);
            break;
        case CommandKind::Voldsp:
            slideVoldsp(command);
            break;
        case CommandKind::TempoSlides:
            a.tempoSlides = true;
            keepSliding(channel);
            break;
        case CommandKind::Tail:
            a.tailSeconds = command.value;
            break;
        case CommandKind::SetChain:
            trash.add(a.chain);
            a.chain = static_cast<Chain*>(command.object);
            break;
        case CommandKind::AddToMixer:
        case CommandKind::ToDevice: {
            const bool began = a.playing;
            stop(channel);
            unplug(channel);
            a.plug = static_cast<Plug*>(command.object);
            if (command.kind == CommandKind::AddToMixer) {
                a.parent = command.other;
            } else {
                a.device = static_cast<int>(command.a);
            }
            if (began || (command.flags & kBegins) != 0)
                start(channel, static_cast<std::uint32_t>(command.b));
            break;
        }
        case CommandKind::Unplug:
            if (a.playing) stop(channel);
            unplug(channel);
            break;
        case CommandKind::Free:
            free(command);
            break;
        case CommandKind::Orphan:
            a.orphan = true;
            break;
        case CommandKind::User:
            a.user = command.other;
            break;
        default:
            applyOther(command);
            break;
    }
}

void Graph::applyOther(const Command& command) {
    AudioState& a = command.channel->audio;
    switch (command.kind) {
        case CommandKind::AddSync: {
            auto* node = static_cast<SyncNode*>(command.object);
            node->next = a.syncs;
            a.syncs = node;
            a.firstSync = std::min(a.firstSync, node->frame);
            expect(*command.channel, 1);
            break;
        }
        case CommandKind::RemoveSync:
            for (SyncNode** at = &a.syncs; *at;) {
                SyncNode* node = *at;
                if (command.a != 0 && node->handle != command.a) {
                    at = &node->next;
                    continue;
                }
                *at = node->next;
                if (a.timed == node) a.timed = nullptr;
                trash.add(node);
                expect(*command.channel, -1);
            }
            findFirstSync(command.channel->audio);
            break;
        case CommandKind::SlideAtSync:
            for (SyncNode* node = a.syncs; node; node = node->next) {
                if (node->handle != command.a) continue;
                node->slides = true;
                node->value = command.value;
                node->ms = command.ms;
                node->flags = command.flags;
                a.timed = node;
                a.timedDue = false;
            }
            break;
        case CommandKind::EqBand:
            command.effect->eqUnit->setBand(command.a, {command.x, command.value, command.y, command.z});
            break;
        case CommandKind::Reverb:
            command.effect->reverbUnit->set({command.value, command.x, command.y, command.z});
            break;
        case CommandKind::FxGain: {
            Slide& gain = command.effect->gain;
            const auto frames = static_cast<std::uint64_t>(kOutputGainSeconds * command.channel->rate);
            gain.start(command.value, a.playing ? frames : 0, false, false);
            break;
        }
        case CommandKind::ResetFx:
            if (command.effect) {
                command.effect->reset();
            } else if (a.chain) {
                for (const auto& stage : a.chain->stages)
                    if (stage.effect) stage.effect->reset();
            }
            break;
        default:
            break;
    }
}

}  // namespace zv::engine
