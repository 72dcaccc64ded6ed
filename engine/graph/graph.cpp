#include "engine/graph/graph.h"

#include <algorithm>
#include <cmath>
#include <thread>

#include "engine/dsp/mix.h"
#include "engine/realtime/thread_tags.h"

namespace zv::engine {
namespace {

constexpr std::size_t kSyncEvents = 4096;
constexpr double kOutputGainSeconds = 0.01;
constexpr std::uint32_t kRestAfterSeconds = 2;
constexpr float kInaudible = 1e-6F;  ///< -120 dB

}  // namespace

Graph::Graph() : syncEvents(kSyncEvents) {
    for (Output& output : outputs_) output.bus.resize(std::size_t{kBlock} * 2);
    pull_.mixBy(mixer_);
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
    silentFrames_ = time_.clock = 0;
    quiet_.store(false, std::memory_order_release);
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
    ++time_.block;
    const float wanted = outputGain.load(std::memory_order_relaxed);
    const bool rested = mayRest_ && silentFrames_ >= std::uint64_t{kRestAfterSeconds} * rate();
    for (int device = 0; device < kMostDevices; ++device) {
        Output& output = outputs_[static_cast<std::size_t>(device)];
        Channel* const& first = playback_.first(device);
        output.played = first != nullptr;
        if (!output.played || rested) output.gain.set(wanted);
        if (!output.played) continue;
        std::fill_n(output.bus.begin(), std::size_t{frames} * 2, 0.0F);
        mixer_.mixInputs(first, output.bus.data(), frames);
        if (!output.gain.active() && output.gain.value() != wanted)
            output.gain.start(wanted, static_cast<std::uint64_t>(kOutputGainSeconds * rate()), false, false);
        if (output.gain.active() || wanted != 1.0F) output.gain.scale(output.bus.data(), frames);
        dsp::makeHarmless({output.bus.data(), std::size_t{frames} * 2});
    }
    passTime(frames);
    countSilence(frames);
    time_.clock += frames;
}

/// The reverb or the conversion of a bus sounds on without a source: silence is what went out as silence.
void Graph::countSilence(std::uint32_t frames) {
    if (!mayRest_) return;
    const bool silent =
        playback_.sounding() == 0 && syncs_.onBuses() == 0 && !slides_.running() &&
        std::ranges::all_of(outputs_, [&](const Output& output) {
            return !output.played ||
                   (!output.gain.active() &&
                    std::all_of(output.bus.begin(), output.bus.begin() + std::ptrdiff_t{2} * frames,
                                [](float sample) { return std::abs(sample) < kInaudible; }));
        });
    silentFrames_ = silent ? silentFrames_ + frames : 0;
    quiet_.store(silentFrames_ >= std::uint64_t{kRestAfterSeconds} * rate(), std::memory_order_release);
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
            upper.plug->align(time_.clock);
        }
        if (level->tempo) level->tempo->restart(frame);
        level = upper.user;
    }
    if (channel.sound) channel.sound->setFocus(frame);
    channel.shared.heard.store(frame, std::memory_order_relaxed);
    channel.shared.appliedMoves.store(moves, std::memory_order_release);
}

void Graph::plugIn(const Command& command) {
    Channel& channel = *command.channel;
    AudioState& a = channel.audio;
    a.plug = static_cast<Plug*>(command.object);
    if (command.kind == CommandKind::AddToMixer) {
        a.parent = command.other;
    } else {
        a.device = static_cast<int>(command.a);
    }
    if ((command.flags & kBegins) != 0) playback_.start(channel, static_cast<std::uint32_t>(command.b));
}

void Graph::free(const Command& command) {
    Channel& channel = *command.channel;
    playback_.unplug(channel, trash);
    slides_.forget(channel);
    syncs_.forget(channel);
    if (channel.source && channel.source->audio.user == &channel) channel.source->audio.user = nullptr;
    trash.add(command.object);
}

void Graph::apply(const Command& command) {
    Channel& channel = *command.channel;
    AudioState& a = channel.audio;
    switch (command.kind) {
        case CommandKind::Play:
            playback_.start(channel, static_cast<std::uint32_t>(command.a));
            break;
        case CommandKind::Stop:
            playback_.stop(channel);
            break;
        case CommandKind::Move:
            move(channel, command.a, static_cast<std::uint32_t>(command.b));
            break;
        case CommandKind::Volume:
            slides_.volume(command);
            break;
        case CommandKind::Voldsp:
            slides_.voldsp(command);
            break;
        case CommandKind::TempoSlides:
            slides_.tempo(channel);
            break;
        case CommandKind::Tail:
            a.tailSeconds = command.value;
            break;
        case CommandKind::SetChain:
            trash.add(a.chain);
            a.chain = static_cast<Chain*>(command.object);
            break;
        case CommandKind::AddToMixer:
        case CommandKind::ToDevice:
            plugIn(command);
            break;
        case CommandKind::Unplug:
            playback_.unplug(channel, trash);
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
        case CommandKind::AddSync:
            syncs_.add(channel, static_cast<SyncNode*>(command.object));
            break;
        case CommandKind::RemoveSync:
            syncs_.remove(channel, static_cast<HSYNC>(command.a), trash);
            break;
        case CommandKind::SlideAtSync:
            Syncs::tieSlide(command);
            break;
        default:
            applyToEffects(command);
            break;
    }
}

void Graph::applyToEffects(const Command& command) {
    AudioState& a = command.channel->audio;
    switch (command.kind) {
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
