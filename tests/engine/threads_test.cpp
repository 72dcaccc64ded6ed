// The engine under devices with threads of their own: for the sanitizers, and for what must never wait.
#include "tests/engine/random_operations.h"
#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

/// Devices whose callbacks run on threads, a fixed number of periods ahead of nobody: as fast as the test
/// lets them. No clock.
class ThreadedDevices final : public DeviceSource {
  public:
    class Line final : public SoundDevice {
      public:
        Line(SoundClient& client, std::uint32_t rate, bool input)
            : client_(client), rate_(rate), input_(input) {
            thread_ = std::jthread([this](const std::stop_token& stop) { run(stop); });
            if (!input) return;
            // It is told of losses by a thread of its own.
            unrest_ = std::jthread([this](const std::stop_token& stop) {
                for (; !stop.stop_requested(); std::this_thread::yield()) {
                    client_.deviceLost();
                    client_.deviceBack();
                }
            });
        }
        std::uint32_t rate() const override { return rate_; }
        std::uint32_t period() const override { return 256; }

      private:
        void run(const std::stop_token& stop) {
            std::vector<float> buffer(512);
            while (!stop.stop_requested()) {
                input_ ? client_.heard(buffer) : client_.render(buffer);
                std::this_thread::yield();
            }
        }
        SoundClient& client_;
        std::uint32_t rate_;
        bool input_;
        std::jthread thread_, unrest_;
    };
    std::vector<DeviceDescription> outputs() override {
        return {{"one", "one", true, 44100}, {"two", "two", false, 48000}};
    }
    std::vector<DeviceDescription> inputs() override { return {{"mic", "mic", true, 48000}}; }
    std::unique_ptr<SoundDevice> openOutput(const std::string& id, std::uint32_t rate,
                                            SoundClient& client) override {
        return std::make_unique<Line>(client, id == "two" ? 48000 : rate, false);
    }
    std::unique_ptr<SoundDevice> openInput(const std::string&, std::uint32_t rate,
                                           SoundClient& client) override {
        return std::make_unique<Line>(client, rate, true);
    }
    std::unique_ptr<SoundDevice> openNoSound(std::uint32_t rate, SoundClient& client) override {
        return std::make_unique<Line>(client, rate, false);
    }
    bool offline() const override { return false; }
};

class Threads : public Show {
  protected:
    Threads() {
        engineControl()->install({decoders, std::make_shared<ThreadedDevices>()});
        decoders->sounds["long"] = {.length = 44100 * 180, .sample = [](std::uint64_t f, std::uint32_t) {
                                        return f % 100 < 50 ? 0.1F : -0.1F;
                                    }};
    }
};

TEST_F(Threads, TenThousandRandomOperations) {
    std::mt19937 random(3U + static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()));
    for (int show = 0; show < 50; ++show) {
        engineControl()->install({decoders, std::make_shared<ThreadedDevices>()});
        Topology studio;
        BASS_RecordInit(-1);
        const DWORD mic = BASS_FX_TempoCreate(BASS_RecordStart(48000, 2, 0, nullptr, nullptr),
                                              BASS_STREAM_DECODE | BASS_FX_FREESOURCE);
        BASS_Mixer_StreamAddChannel(studio.micMixer, mic, 0);
        std::vector<DWORD> known{mic};
        for (const char* name : {"long", "ramp", "sine", "long", "ramp", "sine"}) {
            const DWORD source = file(name), jingle = studio.jingle(source);
            BASS_ChannelSetFX(jingle, BASS_FX_BFX_PEAKEQ, 5);
            BASS_ChannelSetFX(jingle, BASS_FX_DX8_REVERB, 10);
            press(jingle);
            known.insert(known.end(), {jingle, jingle, source});
        }
        std::vector<std::uint8_t> bytes(2000);
        for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
        RandomOperations(bytes, known).run(200);
    }
}

}  // namespace
}  // namespace zv::engine::test
