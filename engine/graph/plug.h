/// How a channel is plugged into a mixer or a device.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "engine/dsp/resampler.h"
#include "engine/graph/trail.h"
#include "engine/realtime/trash.h"

namespace zv::engine {

inline constexpr std::uint32_t kBlock = 256;  ///< most frames computed in one go

/// What a channel is plugged into a mixer or a device with: conversion to its rate, and the meter there.
struct Plug : Garbage {
    Plug(std::uint32_t from, std::uint32_t to);
    std::uint32_t rate;                         ///< of what it is plugged into
    std::unique_ptr<dsp::Resampler> resampler;  ///< null when the rates are equal
    std::vector<float> in, out;                 ///< of the resampler
    std::shared_ptr<Metering> meter;            ///< shared with the caller's side
    std::size_t pending = 0;                    ///< frames waiting in `in`
    std::uint64_t fed = 0;                      ///< frames taken from the channel since the last reset
    bool drained = false;                       ///< the channel has nothing more for it
    bool plain = true;                          ///< since its start the channel is its file and nothing else
    void restart();                             ///< [audio]
    /// A conversion that begins takes the phase of one that ran since the beginning of time: so all of a rate
    /// have one phase. `clock`: frames rendered so far. [audio]
    void align(std::uint64_t clock);
};

}  // namespace zv::engine
