/// How each kind of channel yields sound: as it is in its source, in stereo, its chain passed, its tail behind it.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/graph/positions.h"
#include "engine/graph/render_time.h"

namespace zv::engine {

/// A stretch of sound. `own`: it lies in a buffer of the graph, which the receiver may change and must use before the
/// next pull; else in memory that nobody changes until the end of the render.
struct View {
    static constexpr std::uint64_t kNoSource = ~std::uint64_t{0};
    const float* data = nullptr;
    std::uint64_t source = kNoSource;  ///< untouched mono or stereo from pages: the frame it begins with
    float gain = 1;                    ///< that is still to be applied
    bool mono = false;                 ///< one channel, for both sides
    std::uint32_t frames = 0;
    bool own = false;
    bool ended = false;  ///< without frames: nothing more will come; else it waits for data
};

/// Whoever adds up the inputs of a mixer: see Mixer.
class Mixing {
  public:
    /// Adds the sounding channels from `first` on to `frames` stereo frames at `out`. [audio]
    virtual void mixInputs(Channel* const& first, float* out, std::uint32_t frames) = 0;

  protected:
    ~Mixing() = default;
};

/// Whether an effect of its chain would change a sample. [audio]
bool hasEffects(const AudioState& a);

class Pull {
  public:
    Pull(Positions& positions, Syncs& syncs, const RenderTime& time);
    /// Before the first pull.
    void mixBy(Mixing& mixing) { mixing_ = &mixing; }

    /// Sound of a channel at its own rate, in stereo, its chain passed. [audio]
    View stereo(Channel& channel, std::uint32_t want);
    /// The same for who can mix mono and apply a gain himself: see View::gain, View::mono. [audio]
    View plain(Channel& channel, std::uint32_t want);
    /// A view from plain() in stereo, its gain applied. [audio]
    View finished(View view);
    /// Sound of a channel as it is in its source, before the chain. [audio]
    View native(Channel& channel, std::uint32_t want);

  private:
    View readFile(Channel& channel, std::uint32_t want, Channel& through);
    View readLive(Channel& channel, std::uint32_t want);
    View readTempo(Channel& channel, std::uint32_t want);
    View readSplit(Channel& channel, std::uint32_t want);
    View readMixer(Channel& channel, std::uint32_t want);
    View toStereo(Channel& channel, View view);
    View throughChain(Channel& channel, View view);
    View tail(Channel& channel, std::uint32_t want);
    void advance(Channel& channel, std::uint32_t frames);

    Positions& positions_;
    Syncs& syncs_;
    const RenderTime& time_;
    Mixing* mixing_ = nullptr;
    std::vector<float> stereo_, native_;  ///< buffers of views
};

}  // namespace zv::engine
