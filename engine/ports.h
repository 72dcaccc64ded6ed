/// What the engine takes from its surroundings: decoders and devices. The program installs
/// them once, before the first BASS_Init; platform/ implements them. The engine knows no library of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zv::engine {

/// Format of decoded sound.
struct SoundFormat {
    std::uint32_t rate = 0;      ///< Hz
    std::uint32_t channels = 0;  ///< 1 and up, interleaved
    std::uint32_t bits = 0;      ///< bits of a sample in the file, 0 unknown
};

/// One open sound. Owned and called by one thread at a time [worker] or [control].
class Decoder {
  public:
    virtual ~Decoder() = default;
    virtual SoundFormat format() const = 0;  ///< the same all its life
    /// Exact frames that a full decode yields, encoder delay and padding taken off where the file tells them;
    /// nothing for an endless source (a web stream).
    virtual std::optional<std::uint64_t> length() const = 0;
    /// Fills `out` (interleaved frames); returns the frames written. 0 is the end; for a web stream 0 with
    /// ended() false means that no data is there yet.
    virtual std::size_t read(std::span<float> out) = 0;
    /// Moves to `frame`, exact. False when the source cannot.
    virtual bool seek(std::uint64_t frame) = 0;
    virtual bool ended() const = 0;  ///< nothing more will come without a seek
    /// What a web stream tells about the sound that was read last: "StreamTitle='...';" and whatever its sender puts
    /// there, in its own encoding. Empty when it tells nothing. [any]
    virtual std::string told() const { return {}; }
};

/// Opens decoders. `error` receives a BASS_ERROR_ code when nothing is returned. [any], several at once
class DecoderSource {
  public:
    virtual ~DecoderSource() = default;
    virtual std::unique_ptr<Decoder> openFile(const std::string& path, int& error) = 0;
    virtual std::unique_ptr<Decoder> openModule(const std::string& path, int& error) = 0;
    /// Waits for the connection, at most `timeoutMs`.
    virtual std::unique_ptr<Decoder> openUrl(const std::string& url, std::uint32_t timeoutMs, int& error) = 0;
};

/// Who is called for sound: interleaved stereo frames in float. Never blocks. [audio]
class SoundClient {
  public:
    virtual ~SoundClient() = default;
    /// Output: fills `frames`. Input: hands over what was heard.
    virtual void render(std::span<float> stereo) = 0;
    virtual void heard(std::span<const float> stereo) = 0;
    /// Output: its device had nothing to play for a moment, because it was not asked, or not served, in time.
    virtual void ranDry() {}
    /// The device went away or came back; the sound goes on by itself when it is back. [any]
    virtual void deviceLost() = 0;
    virtual void deviceBack() = 0;
    /// Output: while it was lost its rate (Hz) or its period (largest frames of one call) changed; comes before
    /// deviceBack(). The device's rate() and period() need not follow. [any but audio]
    virtual void deviceChanged(std::uint32_t rate, std::uint32_t period) {
        static_cast<void>(rate);
        static_cast<void>(period);
    }
    /// Output: it would give nothing but silence until its device is woken, which may ask seldom, or not at all.
    /// [audio]
    virtual bool resting() const { return false; }
};

struct DeviceDescription {
    std::string name;  ///< UTF-8, as the user reads it; stable over replugging
    std::string id;    ///< the system's own identifier, stable over replugging
    bool isDefault = false;
    std::uint32_t rate = 0;  ///< its own rate in Hz, 0 unknown
};

/// An open device: calls its client from its own thread until it is destroyed. Destroying it waits for a call
/// that is under way; afterwards the client is not called again. [control]
class SoundDevice {
  public:
    virtual ~SoundDevice() = default;
    virtual std::uint32_t rate() const = 0;    ///< Hz at which the client is called
    virtual std::uint32_t period() const = 0;  ///< largest frames of one call
    /// The client no longer rests: an output that left off asking asks at once, what it has given is heard at once,
    /// in place of silence that is still on its way. Waits for nobody. [any but audio]
    virtual void wake() {}
};

/// Lists and opens devices. [control]; what only asks: [any]
class DeviceSource {
  public:
    virtual ~DeviceSource() = default;
    /// In the system's order, as they are now; those that are gone are missing.
    virtual std::vector<DeviceDescription> outputs() = 0;
    virtual std::vector<DeviceDescription> inputs() = 0;
    /// `id` empty: the default. Nothing is returned when the device cannot be opened.
    virtual std::unique_ptr<SoundDevice> openOutput(const std::string& id, std::uint32_t rate,
                                                    SoundClient& client) = 0;
    virtual std::unique_ptr<SoundDevice> openInput(const std::string& id, std::uint32_t rate,
                                                   SoundClient& client) = 0;
    /// The no-sound device: pulls its client at the pace of a clock and throws the sound away.
    virtual std::unique_ptr<SoundDevice> openNoSound(std::uint32_t rate, SoundClient& client) = 0;
    /// True when sound is pulled by the program's clock and not by hardware: the engine then waits for
    /// decoders instead of stalling, so that every run gives the same bits.
    virtual bool offline() const = 0;
    /// True when all devices run on exactly one clock: two devices of one rate then stay in step for ever and
    /// no correction between them is needed.
    virtual bool oneClock() const { return offline(); }
    /// Whether outputs may rest while nothing sounds. Offline every period is computed.
    virtual bool rests() const { return !offline(); }
};

/// What the engine is given. Each may be missing: then nothing opens (BASS_ERROR_NOTAVAIL), there are no devices.
struct EnginePorts {
    std::shared_ptr<DecoderSource> decoders;
    std::shared_ptr<DeviceSource> devices;
};

/// Counters of a device, all since it was opened.
struct DeviceStatistics {
    std::uint64_t callbacks = 0;
    std::uint64_t asked = 0;  ///< times it showed that it is alive: callbacks, and questions within a rest
    std::uint64_t underruns =
        0;  ///< callbacks that took longer than their sound lasts, and times the device ran dry
    std::uint64_t longestCallbackNs = 0;
    std::uint64_t commandOverflows = 0;  ///< commands that found the ring full
    std::uint64_t sourceUnderruns = 0;   ///< times a decoder or a bridge was not ahead in time
    bool open = false;                   ///< now
    bool lost = false;                   ///< its device is away
    bool resting = false;                ///< not asked, because nothing sounds
};

/// The table through which the program reaches what is not an operation on channels.
struct EngineControl {
    /// Hands the surroundings over; replaces earlier ones, which must not be in use. [control]
    void (*install)(const EnginePorts& ports);
    /// Counters of output `device` (a number of BASS_Init); all 0 for one that is not open. [any]
    DeviceStatistics (*statistics)(int device);
    /// A slide of VOL that begins with the very frame of position sync `sync` of `channel` (value -1: it stops the
    /// channel at its end). The procedure of the sync is called as well, with 1 as its data. False for an unknown one.
    /// [control]
    bool (*slideAtSync)(std::uint32_t channel, std::uint32_t sync, float value, std::uint32_t ms,
                        bool logarithmic);
    /// Offline only: waits until all sync procedures due so far have run. [control]
    void (*settleSyncs)();
};

/// The one entry of the shared library besides the operations. [any]
extern "C" [[gnu::visibility("default")]] const EngineControl* engineControl();

}  // namespace zv::engine
