// Of engine/bass.h, from "channels": attributes and their slides.
#include <cmath>

#include "engine/api/gains.h"
#include "engine/api/playing.h"

using namespace zv::engine;

namespace {

constexpr float kMostPriority = 1e6F, kMostTail = 3600, kMostBuffer = 5;

bool isTempo(DWORD attribute) {
    return attribute == BASS_ATTRIB_TEMPO || attribute == BASS_ATTRIB_TEMPO_PITCH ||
           attribute == BASS_ATTRIB_TEMPO_FREQ;
}

TempoPart tempoPart(DWORD attribute) {
    return attribute == BASS_ATTRIB_TEMPO         ? TempoPart::Tempo
           : attribute == BASS_ATTRIB_TEMPO_PITCH ? TempoPart::Pitch
                                                  : TempoPart::Rate;
}

/// Moves tempo, pitch or rate to `value`, in `ms` where that is above 0.
bool slideTempo(Engine& engine, Channel& channel, DWORD attribute, float value, DWORD ms, bool logarithmic) {
    if (channel.kind != Kind::Tempo) return fail(BASS_ERROR_ILLTYPE, false);
    double to = value;
    if (attribute == BASS_ATTRIB_TEMPO_FREQ) {
        if (value < 0) return fail(BASS_ERROR_ILLPARAM, false);
        const double rate = channel.rate;
        to = value == 0 || to == rate ? 1.0 : to / rate;
    }
    if (!channel.tempo) return succeed(true);  // over a live source a tempo channel passes through
    channel.tempo->slide(tempoPart(attribute), to, (std::uint64_t{ms} * channel.rate + 500) / 1000,
                         logarithmic);
    if (ms > 0) engine.send({.kind = CommandKind::TempoSlides, .channel = &channel});
    Channel& root = channel.root();
    if (!root.sound->sounding()) primeTempo(engine, channel, positionOf(channel));
    engine.workers.wake();
    return succeed(true);
}

bool getTempo(const Channel& channel, DWORD attribute, float& value) {
    if (channel.kind != Kind::Tempo) return fail(BASS_ERROR_ILLTYPE, false);
    const TempoParameters p = channel.tempo ? channel.tempo->parameters() : TempoParameters{};
    if (attribute == BASS_ATTRIB_TEMPO) value = static_cast<float>(p.tempo);
    if (attribute == BASS_ATTRIB_TEMPO_PITCH) value = static_cast<float>(p.pitch);
    if (attribute == BASS_ATTRIB_TEMPO_FREQ) value = static_cast<float>(p.rate * channel.rate);
    return succeed(true);
}

float current(std::uint32_t commands, const std::atomic<std::uint32_t>& applied,
              const std::atomic<float>& heard, float commanded) {
    return applied.load(std::memory_order_acquire) == commands ? heard.load(std::memory_order_relaxed)
                                                               : commanded;
}

/// An attribute that does not slide: acts at once.
bool setPlain(Engine& engine, Channel& channel, DWORD attribute, float value) {
    switch (attribute) {
        case BASS_ATTRIB_BUFFER:
            if (value < 0 || value > kMostBuffer) return fail(BASS_ERROR_ILLPARAM, false);
            channel.control.buffer = value;
            return succeed(true);
        case BASS_ATTRIB_TAIL:
            if (value < 0 || value > kMostTail) return fail(BASS_ERROR_ILLPARAM, false);
            channel.control.tail = value;
            engine.send({.kind = CommandKind::Tail, .value = value, .channel = &channel});
            return succeed(true);
        case BASS_ATTRIB_VOLDSP_PRIORITY:
            if (std::abs(value) > kMostPriority) return fail(BASS_ERROR_ILLPARAM, false);
            if (channel.control.voldspPriority == static_cast<int>(value)) return succeed(true);
            channel.control.voldspPriority = static_cast<int>(value);
            engine.rebuildChain(channel);
            return succeed(true);
        default:
            return fail(BASS_ERROR_ILLTYPE, false);
    }
}

bool slide(DWORD handle, DWORD attribute, float value, DWORD ms) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, false);
    if (!std::isfinite(value)) return fail(BASS_ERROR_ILLPARAM, false);
    const bool logarithmic = (attribute & BASS_SLIDE_LOG) != 0;
    attribute &= ~BASS_SLIDE_LOG;
    if ((attribute == BASS_ATTRIB_VOL || attribute == BASS_ATTRIB_VOLDSP) && value > kMostGain)
        return fail(BASS_ERROR_ILLPARAM, false);
    if (attribute == BASS_ATTRIB_VOL) {
        const bool stops = value == -1.0F;
        sendVolume(call.engine, *channel, std::max(value, 0.0F), ms, logarithmic, stops);
        return succeed(true);
    }
    if (attribute == BASS_ATTRIB_VOLDSP) {
        sendVoldsp(call.engine, *channel, std::max(value, 0.0F), ms, logarithmic);
        return succeed(true);
    }
    if (isTempo(attribute)) return slideTempo(call.engine, *channel, attribute, value, ms, logarithmic);
    return setPlain(call.engine, *channel, attribute, value);
}

}  // namespace

extern "C" {

bool BASS_ChannelSetAttribute(DWORD handle, DWORD attribute, float value) {
    if ((attribute & BASS_SLIDE_LOG) != 0 ||
        ((attribute == BASS_ATTRIB_VOL || attribute == BASS_ATTRIB_VOLDSP) && std::isfinite(value) &&
         value < 0))
        return BASS_ChannelIsActive(handle),
               lastError() == BASS_OK ? fail(BASS_ERROR_ILLPARAM, false) : false;
    return slide(handle, attribute, value, 0);
}

bool BASS_ChannelSlideAttribute(DWORD handle, DWORD attribute, float value, DWORD ms) {
    return slide(handle, attribute, value, ms);
}

bool BASS_ChannelGetAttribute(DWORD handle, DWORD attribute, float* value) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, false);
    if (!value) return fail(BASS_ERROR_ILLPARAM, false);
    const ControlState& c = channel->control;
    const SharedState& s = channel->shared;
    switch (attribute) {
        case BASS_ATTRIB_VOL:
            *value = current(c.volumeCommands, s.appliedVolume, s.volume, c.volume);
            break;
        case BASS_ATTRIB_VOLDSP:
            *value = current(c.voldspCommands, s.appliedVoldsp, s.voldsp, c.voldsp);
            break;
        case BASS_ATTRIB_BUFFER:
            *value = c.buffer;
            break;
        case BASS_ATTRIB_TAIL:
            *value = c.tail;
            break;
        case BASS_ATTRIB_VOLDSP_PRIORITY:
            *value = static_cast<float>(c.voldspPriority);
            break;
        case BASS_ATTRIB_TEMPO:
        case BASS_ATTRIB_TEMPO_PITCH:
        case BASS_ATTRIB_TEMPO_FREQ:
            return getTempo(*channel, attribute, *value);
        default:
            return fail(BASS_ERROR_ILLTYPE, false);
    }
    return succeed(true);
}

bool BASS_ChannelIsSliding(DWORD handle, DWORD attribute) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, false);
    setError(BASS_OK);
    const ControlState& c = channel->control;
    const SharedState& s = channel->shared;
    const auto sliding = [](std::uint32_t commands, const std::atomic<std::uint32_t>& applied,
                            bool lastSlides, const std::atomic<bool>& slides) {
        return applied.load(std::memory_order_acquire) == commands ? slides.load(std::memory_order_relaxed)
                                                                   : lastSlides;
    };
    if (attribute == BASS_ATTRIB_VOL)
        return sliding(c.volumeCommands, s.appliedVolume, c.volumeSlides, s.volumeSlides);
    if (attribute == BASS_ATTRIB_VOLDSP)
        return sliding(c.voldspCommands, s.appliedVoldsp, c.voldspSlides, s.voldspSlides);
    if (isTempo(attribute) && channel->tempo) return channel->tempo->sliding(tempoPart(attribute));
    return false;
}

}  // extern "C"
