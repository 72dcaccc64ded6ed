/// Slides of VOL and VOLDSP: commanded, advanced with the sound, and let run on where nothing sounds; and the
/// clock of slides of tempo, pitch and rate.
#pragma once

#include <cstdint>

#include "engine/graph/command.h"
#include "engine/graph/playback.h"
#include "engine/graph/render_time.h"

namespace zv::engine {

class Slides {
  public:
    Slides(Playback& playback, const RenderTime& time) : playback_(playback), time_(time) {}

    void volume(const Command& command);  ///< CommandKind::Volume [audio]
    void voldsp(const Command& command);  ///< CommandKind::Voldsp [audio]
    void tempo(Channel& channel);         ///< CommandKind::TempoSlides [audio]
    void forget(Channel& channel);        ///< it is being freed [audio]
    /// After each block of `frames`: advances the slides that its sound did not, and publishes all of them.
    /// [audio]
    void passTime(std::uint32_t frames);
    bool running() const { return first_ != nullptr; }  ///< [audio]

  private:
    void keep(Channel& channel);

    Playback& playback_;
    const RenderTime& time_;
    Channel* first_ = nullptr;
};

}  // namespace zv::engine
