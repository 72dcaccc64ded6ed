#include "platform/desktop_sound/choosing_devices.h"

#include <mutex>
#include <utility>

namespace zv {
namespace {

class ChoosingDevices final : public engine::DeviceSource {
  public:
    explicit ChoosingDevices(std::vector<SoundSystem> systems) : systems_(std::move(systems)) {}

    std::vector<engine::DeviceDescription> outputs() override {
        const std::lock_guard lock(mutex_);
        if (std::vector<engine::DeviceDescription> known = systems_[chosen_].devices->outputs();
            !known.empty() || opened_)
            return known;
        for (std::size_t i = 0; i < systems_.size(); ++i) {
            if (systems_[i].waits && systems_[i].waits()) break;
            if (i == chosen_) continue;
            std::vector<engine::DeviceDescription> found = systems_[i].devices->outputs();
            if (found.empty()) continue;
            chosen_ = i;
            return found;
        }
        return {};
    }
    std::vector<engine::DeviceDescription> inputs() override { return chosen()->inputs(); }
    std::unique_ptr<engine::SoundDevice> openOutput(const std::string& id, std::uint32_t rate,
                                                    engine::SoundClient& client) override {
        auto device = chosen()->openOutput(id, rate, client);
        if (device) {
            const std::lock_guard lock(mutex_);
            opened_ = true;
        }
        return device;
    }
    std::unique_ptr<engine::SoundDevice> openInput(const std::string& id, std::uint32_t rate,
                                                   engine::SoundClient& client) override {
        return chosen()->openInput(id, rate, client);
    }
    std::unique_ptr<engine::SoundDevice> openNoSound(std::uint32_t rate,
                                                     engine::SoundClient& client) override {
        return systems_.front().devices->openNoSound(rate, client);
    }
    bool offline() const override { return false; }

  private:
    std::shared_ptr<engine::DeviceSource> chosen() {
        const std::lock_guard lock(mutex_);
        return systems_[chosen_].devices;
    }

    std::mutex mutex_;
    const std::vector<SoundSystem> systems_;
    std::size_t chosen_ = 0;
    bool opened_ = false;  ///< what is open is followed by its own system
};

}  // namespace

std::shared_ptr<engine::DeviceSource> chooseDevices(std::vector<SoundSystem> systems) {
    return std::make_shared<ChoosingDevices>(std::move(systems));
}

}  // namespace zv
