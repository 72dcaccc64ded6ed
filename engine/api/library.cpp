// Of engine/bass.h: "the library"; and the table of engine/ports.h for the program.
#include <algorithm>

#include "engine/api/engine.h"

using namespace zv::engine;

extern "C" {

DWORD BASS_GetVersion() { return BASSVERSION << 16; }

int BASS_ErrorGetCode() { return lastError(); }

bool BASS_SetConfig(DWORD option, DWORD value) {
    const Call call;
    constexpr DWORD longestMs = 600'000, fullVolume = 10'000;
    const DWORD most = option == BASS_CONFIG_GVOL_STREAM ? fullVolume : longestMs;
    if (!call.engine.config.contains(option) || value > most) return fail(BASS_ERROR_ILLPARAM, false);
    call.engine.config[option] = value;
    if (option == BASS_CONFIG_GVOL_STREAM)
        call.engine.graph.outputGain.store(static_cast<float>(value) / fullVolume, std::memory_order_relaxed);
    return succeed(true);
}

DWORD BASS_GetConfig(DWORD option) {
    const Call call;
    const auto at = call.engine.config.find(option);
    if (at == call.engine.config.end()) return fail(BASS_ERROR_ILLPARAM, ~DWORD{0});
    return succeed(at->second);
}

}  // extern "C"

namespace zv::engine {
namespace {

void install(const EnginePorts& ports) {
    assertControlThread();
    Engine::instance().install(ports);
}

DeviceStatistics statistics(int device) {
    Engine& engine = Engine::instance();
    const std::lock_guard lock(engine.mutex);
    const OutputSlot* slot = engine.outputs.slot(device);
    return slot ? slot->statistics() : DeviceStatistics{};
}

void settleSyncs() {
    Engine& engine = Engine::instance();
    {
        // Mostly no sync is due: then the dispatcher's thread is not woken.
        const std::lock_guard lock(engine.mutex);
        if (engine.offline() && !engine.graph.syncEvents.filled() && engine.graph.commands.settled()) return;
    }
    engine.dispatcher.settle();
}

bool slideAtSync(DWORD handle, HSYNC sync, float value, DWORD ms, bool logarithmic) {
    const Call call;
    const auto channel = call.engine.find(handle);
    const auto at = call.engine.syncs.find(sync);
    if (!channel || at == call.engine.syncs.end() || at->second.channel != handle) return false;
    call.engine.send({.kind = CommandKind::SlideAtSync,
                      .flags = (logarithmic ? kSlideLog : 0) | (value < 0 ? kSlideStops : 0),
                      .value = std::max(value, 0.0F),
                      .ms = ms,
                      .channel = channel.get(),
                      .a = sync});
    return true;
}

constexpr EngineControl table{install, statistics, slideAtSync, settleSyncs};

}  // namespace

extern "C" const EngineControl* engineControl() { return &table; }

}  // namespace zv::engine
