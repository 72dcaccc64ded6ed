/// Sound that cannot be asked for by position: an input device, a web stream.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <thread>

#include "engine/ports.h"
#include "engine/realtime/ring.h"
#include "engine/sources/bridge.h"

namespace zv::engine {

class LiveInput {
  public:
    virtual ~LiveInput() = default;
    /// Up to the whole of `out` (interleaved, the input's own channels); returns frames. [audio]
    virtual std::size_t read(std::span<float> out) = 0;
    /// Nothing will come any more. [audio]
    virtual bool ended() const = 0;
    /// Offline: takes in what can be had now. [control]
    virtual void fillNow() {}
    /// As Decoder::told(). [any but audio]
    virtual std::string told() const { return {}; }
};

/// A recording: what the input device's callback hands over.
class RecordInput final : public LiveInput {
  public:
    explicit RecordInput(const BridgeOptions& options) : bridge(options) {}
    std::size_t read(std::span<float> out) override {
        bridge.read(out);
        return out.size() / 2;
    }
    bool ended() const override { return false; }
    Bridge bridge;
};

/// A web stream: a thread of its own reads the decoder (it waits for the network) into a ring.
class UrlInput final : public LiveInput {
  public:
    /// `offline`: no thread, fillNow() reads.
    UrlInput(std::unique_ptr<Decoder> decoder, bool offline);
    ~UrlInput() override;
    std::size_t read(std::span<float> out) override;
    bool ended() const override;
    void fillNow() override;
    std::string told() const override;
    /// Frames held ready. [any]
    std::size_t filled() const;

  private:
    struct Tank;
    std::shared_ptr<Tank> tank_;  // shared with the thread, which may outlive this in a read of the network
    bool flowing_ = false;        ///< sounds [audio]
    std::size_t ranDry_ = 0;      ///< times it ran dry, up to the last of kRefillSeconds [audio]
};

}  // namespace zv::engine
