#include "engine/api/engine.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace zv::engine {
namespace {

constexpr std::uint64_t kSilentRank = std::uint64_t{1} << 40, kNoSoundRank = std::uint64_t{1} << 50;
constexpr auto kCommandsWait = std::chrono::milliseconds(200);

void beforeBlock() {
    Engine& e = Engine::instance();
    e.workers.serveBlock();
    for (const auto& url : e.urls)
        if (const auto input = url.lock()) input->fillNow();
}

void afterPeriod() {
    Engine& e = Engine::instance();
    if (!e.graph.syncEvents.filled()) return;
    e.dispatcher.settle();
}

}  // namespace

Engine& Engine::instance() {
    // Never destroyed: callbacks and workers may outlive the statics of other libraries.
    static Engine* const engine = [] {
        auto* made = new Engine;
        made->config = {{BASS_CONFIG_BUFFER, 500},
                        {BASS_CONFIG_GVOL_STREAM, 10000},
                        {BASS_CONFIG_NET_TIMEOUT, 5000},
                        {BASS_CONFIG_DEV_NONSTOP, 0}};
        return made;
    }();
    return *engine;
}

int& selectedOutput() {
    thread_local int selected = -1;
    return selected;
}

int& selectedInput() {
    thread_local int selected = -1;
    return selected;
}

void Engine::install(const EnginePorts& newPorts) {
    dispatcher.stop();
    workers.stop();
    {
        std::unique_lock lock(mutex);
        freeEverything();
        ports = newPorts;
        outputs.hooks = {offline(), beforeBlock, afterPeriod};
        graph.mayRest(ports.devices && ports.devices->rests());
    }
    dispatcher.start([] { return Engine::instance().runSyncs(); }, !offline());
    if (!offline()) workers.start();
}

void Engine::freeEverything() {
    for (auto& slot : inputs) slot->device.reset();
    for (int i = 0; i < kMostDevices; ++i) outputs.close(i);
    std::fill(outputInitialised.begin(), outputInitialised.end(), false);
    std::unique_lock<std::mutex> none;
    while (!channels.empty()) freeChannel(channels.begin()->second, none);
    settleCommands();
    inputs.clear();
    outputRegister.clear();
    inputRegister.clear();
    graph.restart();
    config[BASS_CONFIG_GVOL_STREAM] = 10000;
    config[BASS_CONFIG_BUFFER] = 500;
}

void Engine::send(const Command& command) {
    graph.commands.send(command);
    const bool sounds = command.kind == CommandKind::Play || (command.flags & kBegins) != 0;
    if (command.kind == CommandKind::Move) workers.wake();
    if (sounds) {
        outputs.wake();
    } else if (graph.quiet()) {
        dispatcher.watch();
    }
}

DWORD Engine::newHandle() {
    // Counts up, so that a freed handle comes back after four thousand million others.
    do {
        if (++lastHandle_ == 0) lastHandle_ = 0x10000;
    } while (channels.contains(lastHandle_) || effects.contains(lastHandle_) || syncs.contains(lastHandle_));
    return lastHandle_;
}

std::shared_ptr<Channel> Engine::find(DWORD handle) const {
    const auto at = channels.find(handle);
    return at == channels.end() ? nullptr : at->second;
}

void Engine::adopt(const std::shared_ptr<Channel>& channel) {
    channel->handle = newHandle();
    channel->serial = newSerial();
    channels[channel->handle] = channel;
}

bool Engine::active(Channel& channel) const {
    const ControlState& c = channel.control;
    return c.playing && channel.shared.endedGeneration.load(std::memory_order_acquire) != c.generation;
}

void Engine::rebuildChain(Channel& channel) {
    send({.kind = CommandKind::SetChain,
          .channel = &channel,
          .object = Chain::build(channel.control.effects, channel.control.voldspPriority).release()});
}

void Engine::removeSync(Channel& channel, HSYNC sync, std::unique_lock<std::mutex>& lock) {
    send({.kind = CommandKind::RemoveSync, .channel = &channel, .a = sync});
    syncs.erase(sync);
    if (!dispatcher.isThisThread()) finished_.wait(lock, [&] { return running_ != sync; });
}

void Engine::freeChannel(const std::shared_ptr<Channel>& held, std::unique_lock<std::mutex>& lock) {
    const std::shared_ptr<Channel> channel = held;
    if (channel->control.freed) return;
    channel->control.freed = true;
    channels.erase(channel->handle);
    std::erase_if(syncs, [&](const auto& entry) { return entry.second.channel == channel->handle; });
    for (const auto& effect : channel->control.effects) effects.erase(effect->handle);
    for (const auto& [handle, other] : channels) {
        if (other->control.mixer == channel->handle) {
            other->control.mixer = 0;
            send({.kind = CommandKind::Unplug, .channel = other.get()});
        }
        if (other->source == channel || (other->hub && other->hub->source == channel))
            send({.kind = CommandKind::Orphan, .channel = other.get()});
    }
    if (const auto record = std::dynamic_pointer_cast<RecordInput>(channel->live))
        for (auto& slot : inputs) slot->remove(record.get());
    send({.kind = CommandKind::Free, .channel = channel.get(), .object = new ChannelKeeper(channel)});
    if (channel->freeSource && channel->source) freeChannel(channel->source, lock);
    rankOutputs();
    if (lock.owns_lock() && !dispatcher.isThisThread())
        finished_.wait(lock, [&] { return runningChannel_ != channel->handle; });
}

void Engine::rankOutputs() {
    for (int i = 0; i < kMostDevices; ++i) {
        OutputSlot* slot = outputs.slot(i);
        if (!slot) continue;
        std::uint64_t rank = kSilentRank + static_cast<std::uint64_t>(i);
        for (const auto& [handle, channel] : channels) {
            if (channel->decoding || channel->device != i) continue;
            const Channel* eldest = channel.get();
            if (channel->hub) eldest = channel->hub->source.get();
            rank = std::min(rank, eldest->serial * kMostDevices + static_cast<std::uint64_t>(i));
        }
        slot->rank.store(i == 0 ? kNoSoundRank : rank, std::memory_order_relaxed);
    }
}

void Engine::reap() {
    std::erase_if(freedWhenStopped, [this](DWORD handle) {
        const auto channel = find(handle);
        if (channel && (active(*channel) || channel->control.paused)) return false;
        std::unique_lock<std::mutex> none;
        if (channel) freeChannel(channel, none);
        return true;
    });
}

void Engine::settleCommands() {
    graph.commands.flush();
    if (!outputs.anyOpen()) obeyHere();
    graph.trash.empty();
}

void Engine::obeyHere() {
    graph.acquire();
    do {
        graph.obeyCommands();
        graph.commands.flush();
    } while (!graph.commands.empty());
    graph.release();
}

void Engine::waitForCommands(std::unique_lock<std::mutex>& lock) {
    if (offline() || !outputs.anyOpen()) obeyHere();
    const auto until = std::chrono::steady_clock::now() + kCommandsWait;
    while (!graph.commands.empty() && std::chrono::steady_clock::now() < until) {
        lock.unlock();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        lock.lock();
    }
}

bool Engine::runSyncs() {
    SyncEvent event;
    while (graph.syncEvents.pop(event)) {
        std::unique_lock lock(mutex);
        const auto at = syncs.find(event.sync);
        const auto channel = find(event.channel);
        // Freed, removed or moved since: it never fires late.
        if (at == syncs.end() || !channel || channel->root().control.moves != event.moves) continue;
        const SyncRecord record = at->second;
        if (record.once) removeSync(*channel, event.sync, lock);
        running_ = event.sync;
        runningChannel_ = event.channel;
        lock.unlock();
        try {
            record.procedure(event.sync, event.channel, event.slides ? 1 : 0, record.user);
        } catch (...) {
            // A procedure that throws must not end the sound.
        }
        lock.lock();
        running_ = 0;
        runningChannel_ = 0;
        finished_.notify_all();
    }
    const std::unique_lock lock(mutex, std::try_to_lock);
    if (!lock) return true;
    settleCommands();
    // Resting outputs hear commands that make no sound by themselves once those of the same press have come.
    const bool unheard = graph.quiet() && !graph.commands.empty();
    if (unheard && unheard_) outputs.wake();
    unheard_ = unheard;
    // While something with a sync sounds, or commands wait for room, another look is worth it.
    return !graph.commands.settled() || std::ranges::any_of(syncs, [this](const auto& entry) {
        const auto channel = find(entry.second.channel);
        return channel && active(*channel);
    });
}

void Engine::refreshDevices() {
    if (!ports.devices) return;
    std::vector<bool> kept(kMostDevices, false);
    for (int i = 1; i < kMostDevices; ++i)
        kept[static_cast<std::size_t>(i) - 1] = outputInitialised[static_cast<std::size_t>(i)];
    outputRegister.refresh(ports.devices->outputs(), kept);
    std::vector<bool> keptInputs;
    for (const auto& slot : inputs) keptInputs.push_back(slot->initialised);
    inputRegister.refresh(ports.devices->inputs(), keptInputs);
}

InputSlot* Engine::input(int number) {
    const auto& entries = inputRegister.entries();
    if (number < 0) {
        const auto found =
            std::ranges::find_if(entries, [](const auto& e) { return e.present && e.description.isDefault; });
        number = found == entries.end() ? 0 : static_cast<int>(found - entries.begin());
    }
    const auto place = static_cast<std::size_t>(number);
    if (place >= entries.size()) return nullptr;
    while (inputs.size() <= place) inputs.push_back(std::make_unique<InputSlot>());
    inputs[place]->id = entries[place].description.id;
    return inputs[place].get();
}

void Engine::closeOutput(int number, std::unique_lock<std::mutex>& lock) {
    std::vector<std::shared_ptr<Channel>> gone;
    for (const auto& [handle, channel] : channels)
        if (!channel->decoding && channel->device == number) gone.push_back(channel);
    for (const auto& channel : gone) freeChannel(channel, lock);
    outputInitialised[static_cast<std::size_t>(number)] = false;
    if (number != 0) outputs.close(number);
    // The no-sound device stands in for lost ones, as long as there is any.
    if (std::ranges::none_of(outputInitialised, [](bool on) { return on; })) outputs.close(0);
    rankOutputs();
}

}  // namespace zv::engine
