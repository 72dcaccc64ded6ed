/// The jingle records and the values that belong to them. `J` is the one store of jingle state: 0 to 95 the
/// slots of the current palette, 96 to 119 the hot jingles. Touched on the interface thread only, except that
/// the sync procedures read hPlay, FadeOut and FadeAttrib and write Playing. [control]
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

namespace zv {

inline constexpr int kJingles = 120;
inline constexpr int kPaletteSlots = 96;    ///< 0..95; hot jingles follow
inline constexpr int kNotFound = kJingles;  ///< what a search over J ends with

/// A value that the interface and the sync dispatcher share: each store is one whole, none orders another.
template <class T>
class Shared {
  public:
    Shared(T value = {}) : v_(value) {}
    Shared(const Shared& o) : v_(T(o)) {}
    Shared& operator=(const Shared& o) { return *this = T(o); }
    Shared& operator=(T value) {
        v_.store(value, std::memory_order_relaxed);
        return *this;
    }
    operator T() const { return v_.load(std::memory_order_relaxed); }

  private:
    std::atomic<T> v_;
};

/// Values of JingleRecord::State.
enum class PlayState : std::uint8_t { idle = 0, playing = 1, leavingLoop = 3, stopping = 4 };
/// Values of JingleRecord::PlayMod.
enum class PlayMode : std::uint8_t { global = 0, autoRepeat = 1, touch = 2, playStop = 3, noStop = 4 };
/// Values of JingleRecord::Kind.
enum class SlotKind : std::uint8_t { nothing = 0, stream = 1, playlist = 2 };

inline constexpr const char* kFaceColourText = "vbButtonFace";

/// What a palette file holds of a jingle, in the order of its keys; it travels as one when a button is moved.
/// Positions are bytes of the decoded stream.
struct PersistedJingle {
    std::string Path;           ///< as the file has it
    int Volm = 100;             ///< percent
    std::uint8_t AutoDuck = 0;  ///< 0 not chosen, 1 ducks, 2 deliberately does not
    std::string AutoDuckKey;    ///< raw text of the key as last read
    std::uint8_t NoAutomix = 0;
    std::uint8_t NoTrigDuck = 0;
    std::uint8_t Loop = 0;
    std::uint8_t Seq = 0;
    double LoopIn = 0, LoopOut = 0;
    Shared<std::int32_t> FadeOut = 0;  ///< ms
    std::uint8_t LogFadeOut = 0;
    std::uint8_t LoopFadeOut = 0;
    std::string BTNCol = kFaceColourText;  ///< RRGGBB or "vbButtonFace"
    PlayMode PlayMod = PlayMode::global;
    double CueStart = 0;
    double StopPos = 0;  ///< 0 = to the end
    std::string FXV;     ///< eleven numbers separated by commas
    std::string Playlist;
    /// Of a file that could not be opened: the record shows defaults, the palette file keeps what it had.
    bool KeepsStored = false;
    int StoredVolm = 100;
    std::uint8_t StoredLoop = 0, StoredSeq = 0;

    bool operator==(const PersistedJingle&) const = default;
};

struct JingleRecord : PersistedJingle {
    bool Unplayable = false;  ///< the file exists but the engine refuses it
    bool MissingFile = false;
    std::int16_t BassErr = 0;  ///< code of the last failed opening
    std::int32_t BackRGB = 0;  ///< 0xBBGGRR in effect
    std::int32_t ForeRGB = 0;
    double Duration = 0;                  ///< seconds, never below 0
    double EndOffset = 0;                 ///< bytes cut from the end, never below 0
    Shared<std::int32_t> FadeAttrib = 2;  ///< what LogFadeOut makes of the fade: FadeAttribOf
    std::int32_t Freq = 0;                ///< Hz
    bool PlayingOtherPal = false;         ///< still sounding from an earlier palette
    double LoopLen = 0;                   ///< bytes
    Shared<bool> Playing;
    Shared<bool> Leaving;  ///< fades to its end: nothing else moves its level any more
    PlayState State = PlayState::idle;
    SlotKind Kind = SlotKind::nothing;
    std::int32_t ReverbMs = 0;   ///< ms of reverb tail
    std::uint32_t FadeSync = 0;  ///< sync that ends a stop with tail; 0 none
    std::uint8_t SeqBefore = 0;
    std::uint8_t Pressed = 0;
    Shared<std::uint32_t> hPlay = 0;  ///< the tempo channel that is played and mixed
    std::uint32_t hSrc = 0;           ///< the decoding source under it

    PersistedJingle& persisted() { return *this; }
    const PersistedJingle& persisted() const { return *this; }
};

extern std::array<JingleRecord, kJingles> J;
/// The record of an index within 0..119.
inline JingleRecord& Jingle(int index) { return J[static_cast<std::size_t>(index)]; }

extern std::array<std::uint8_t, kJingles> JExists;  ///< 1 when the button exists and is in use
extern std::array<std::uint32_t, kJingles> JReverbFx, JVolFx, JEqFx;
extern int LastPalIdx;  ///< JinglesRows x JinglesCols - 1

/// Slot of a channel handle, kNotFound (120) when none has it. [any]
int FindJingle(std::uint32_t channel);
/// BASS_ATTRIB_VOL, with BASS_SLIDE_LOG for a logarithmic fade.
std::int32_t FadeAttribOf(const PersistedJingle& jingle);
/// A position as the engine takes it: whole bytes, 0 for what is below or no number.
std::uint64_t BytePosition(double position);
/// Last live index: 95 + 2 x JinglesCols.
int LastLiveIdx();
/// The loop filter of all walks: not above LastPalIdx, or 96 and up to LastLiveIdx().
bool IsLive(int index);

/// The indices that IsLive tells of, in order: `for (const int i : LiveJingles())`.
class LiveJingles {
  public:
    class Iterator {
      public:
        constexpr Iterator(int index, int lastPalette) : index_(index), lastPalette_(lastPalette) {}
        constexpr int operator*() const { return index_; }
        constexpr Iterator& operator++() {
            index_ = index_ == lastPalette_ ? kPaletteSlots : index_ + 1;
            return *this;
        }
        constexpr bool operator!=(const Iterator& other) const { return index_ != other.index_; }

      private:
        int index_;
        int lastPalette_;
    };
    Iterator begin() const { return {0, LastPalIdx}; }
    Iterator end() const { return {LastLiveIdx() + 1, LastPalIdx}; }
};

}  // namespace zv
