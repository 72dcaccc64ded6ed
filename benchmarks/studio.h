/// The whole mix topology of two outputs over sounds in memory, driven by hand: each call of play() is one
/// callback of each device, on the calling thread, while the engine's own workers run as on air.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/bass.h"
#include "engine/ports.h"

namespace zv::bench {

inline constexpr std::uint32_t kRate = 44100;
inline constexpr std::uint32_t kPeriod = 256;

/// Devices that wait to be asked.
class HandDevices final : public engine::DeviceSource {
  public:
    std::vector<engine::DeviceDescription> outputs() override;
    std::vector<engine::DeviceDescription> inputs() override { return {}; }
    std::unique_ptr<engine::SoundDevice> openOutput(const std::string& id, std::uint32_t rate,
                                                    engine::SoundClient& client) override;
    std::unique_ptr<engine::SoundDevice> openInput(const std::string&, std::uint32_t,
                                                   engine::SoundClient&) override {
        return nullptr;
    }
    std::unique_ptr<engine::SoundDevice> openNoSound(std::uint32_t rate,
                                                     engine::SoundClient& client) override;
    bool offline() const override { return false; }

    /// One period on every output.
    void period();
    /// Processor seconds of the longest callback since the last call; 0 at the first.
    double takeLongest();
    const std::vector<float>& heard() const { return buffer_; }

  private:
    friend class HandDevice;
    std::vector<engine::SoundClient*> clients_;
    std::vector<float> buffer_ = std::vector<float>(2 * kPeriod);
    double longest_ = 0;
    bool watches_ = false;  ///< looking at the clock costs: only once someone asked
};

/// Sounds of noise: `count` of them, `frames` long, stereo.
std::vector<std::vector<float>> makeSounds(std::size_t count, std::size_t frames);

class Studio {
  public:
    /// `sounds` must outlive it. Sound k is the file "k".
    explicit Studio(const std::vector<std::vector<float>>& sounds);
    ~Studio();
    Studio(const Studio&) = delete;
    Studio& operator=(const Studio&) = delete;

    /// Opens file "k" as a jingle in its place in the main mixer, stopped, looping. `form`: "" for the outputs'
    /// rate in stereo, "mono", or "fast" for 48 kHz.
    DWORD jingle(std::size_t k, const std::string& form = {});
    void play(std::size_t periods);

    std::shared_ptr<HandDevices> devices = std::make_shared<HandDevices>();

  private:
    DWORD mainMixer_ = 0;
};

}  // namespace zv::bench
