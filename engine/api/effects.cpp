// Of engine/bass.h: "effects", without tempo channels.
#include <cmath>

#include "engine/api/gains.h"

using namespace zv::engine;

namespace {

constexpr std::size_t kMostEffects = 32;

bool setEq(Engine& engine, Channel& channel, Effect& effect, const BASS_BFX_PEAKEQ& p) {
    if (p.lBand < 0 || static_cast<std::size_t>(p.lBand) >= kMostBands)
        return fail(BASS_ERROR_ILLPARAM, false);
    for (const float value : {p.fBandwidth, p.fQ, p.fCenter, p.fGain})
        if (!std::isfinite(value)) return fail(BASS_ERROR_ILLPARAM, false);
    const auto band = static_cast<std::size_t>(p.lBand);
    while (effect.bands.size() <= band)
        effect.bands.push_back({static_cast<int>(effect.bands.size()), 1, 0, 1000, 0, BASS_BFX_CHANALL});
    effect.bands[band] = p;
    engine.send({.kind = CommandKind::EqBand,
                 .value = p.fGain,
                 .channel = &channel,
                 .effect = &effect,
                 .a = band,
                 .x = p.fCenter,
                 .y = p.fBandwidth,
                 .z = p.fQ});
    return succeed(true);
}

bool setReverb(Engine& engine, Channel& channel, Effect& effect, const BASS_DX8_REVERB& p) {
    for (const float value : {p.fInGain, p.fReverbMix, p.fReverbTime, p.fHighFreqRTRatio})
        if (!std::isfinite(value)) return fail(BASS_ERROR_ILLPARAM, false);
    effect.reverb = p;
    engine.send({.kind = CommandKind::Reverb,
                 .value = p.fInGain,
                 .channel = &channel,
                 .effect = &effect,
                 .x = p.fReverbMix,
                 .y = p.fReverbTime,
                 .z = p.fHighFreqRTRatio});
    return succeed(true);
}

bool setVolume(Engine& engine, Channel& channel, Effect& effect, const BASS_BFX_VOLUME& p) {
    if (!(p.fVolume >= 0 && p.fVolume <= kMostGain)) return fail(BASS_ERROR_ILLPARAM, false);
    effect.volume = p;
    engine.send({.kind = CommandKind::FxGain, .value = p.fVolume, .channel = &channel, .effect = &effect});
    return succeed(true);
}

}  // namespace

extern "C" {

HFX BASS_ChannelSetFX(DWORD handle, DWORD kind, int priority) {
    const Call call;
    Engine& e = call.engine;
    const auto channel = e.find(handle);
    if (!channel) return fail<HFX>(BASS_ERROR_HANDLE, 0);
    if (kind != BASS_FX_BFX_PEAKEQ && kind != BASS_FX_DX8_REVERB && kind != BASS_FX_BFX_VOLUME)
        return fail<HFX>(BASS_ERROR_ILLTYPE, 0);
    if (channel->control.effects.size() >= kMostEffects) return fail<HFX>(BASS_ERROR_NOFX, 0);
    try {
        auto effect = std::make_shared<Effect>(kind, channel->rate);
        effect->handle = e.newHandle();
        effect->channel = handle;
        effect->priority = priority;
        e.effects[effect->handle] = effect;
        channel->control.effects.push_back(effect);
        e.rebuildChain(*channel);
        return succeed(effect->handle);
    } catch (...) {
        return fail<HFX>(BASS_ERROR_MEM, 0);
    }
}

bool BASS_ChannelRemoveFX(DWORD handle, HFX fx) {
    const Call call;
    Engine& e = call.engine;
    const auto channel = e.find(handle);
    const auto at = e.effects.find(fx);
    if (!channel || at == e.effects.end() || at->second->channel != handle)
        return fail(BASS_ERROR_HANDLE, false);
    std::erase(channel->control.effects, at->second);
    e.effects.erase(at);
    e.rebuildChain(*channel);
    return succeed(true);
}

bool BASS_FXSetParameters(HFX fx, const void* parameters) {
    const Call call;
    Engine& e = call.engine;
    const auto at = e.effects.find(fx);
    if (at == e.effects.end()) return fail(BASS_ERROR_HANDLE, false);
    if (!parameters) return fail(BASS_ERROR_ILLPARAM, false);
    Effect& effect = *at->second;
    const auto channel = e.find(effect.channel);  // it frees its effects
    switch (effect.kind) {
        case BASS_FX_BFX_PEAKEQ:
            return setEq(e, *channel, effect, *static_cast<const BASS_BFX_PEAKEQ*>(parameters));
        case BASS_FX_DX8_REVERB:
            return setReverb(e, *channel, effect, *static_cast<const BASS_DX8_REVERB*>(parameters));
        default:
            return setVolume(e, *channel, effect, *static_cast<const BASS_BFX_VOLUME*>(parameters));
    }
}

bool BASS_FXGetParameters(HFX fx, void* parameters) {
    const Call call;
    const auto at = call.engine.effects.find(fx);
    if (at == call.engine.effects.end()) return fail(BASS_ERROR_HANDLE, false);
    if (!parameters) return fail(BASS_ERROR_ILLPARAM, false);
    const Effect& effect = *at->second;
    if (effect.kind == BASS_FX_BFX_PEAKEQ) {
        auto& out = *static_cast<BASS_BFX_PEAKEQ*>(parameters);
        const auto band = static_cast<std::size_t>(out.lBand);
        if (out.lBand < 0 || band >= effect.bands.size()) return fail(BASS_ERROR_ILLPARAM, false);
        out = effect.bands[band];
    } else if (effect.kind == BASS_FX_DX8_REVERB) {
        *static_cast<BASS_DX8_REVERB*>(parameters) = effect.reverb;
    } else {
        *static_cast<BASS_BFX_VOLUME*>(parameters) = effect.volume;
    }
    return succeed(true);
}

bool BASS_FXReset(DWORD handle) {
    const Call call;
    Engine& e = call.engine;
    // Channels first: the display asks for all of them at every tick.
    if (const auto at = e.channels.find(handle); at != e.channels.end()) {
        Channel& channel = *at->second;
        std::atomic<bool>& dirty = channel.shared.dirty;
        const bool passed =
            dirty.load(std::memory_order_relaxed) && dirty.exchange(false, std::memory_order_relaxed);
        // Nothing went through since the last time: nothing to empty.
        if (passed || e.active(channel)) e.send({.kind = CommandKind::ResetFx, .channel = &channel});
        return succeed(true);
    }
    const auto at = e.effects.find(handle);
    if (at == e.effects.end()) return fail(BASS_ERROR_HANDLE, false);
    if (const auto channel = e.find(at->second->channel))
        e.send({.kind = CommandKind::ResetFx, .channel = channel.get(), .effect = at->second.get()});
    return succeed(true);
}

}  // extern "C"
