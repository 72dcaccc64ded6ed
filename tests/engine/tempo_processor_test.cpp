// What a tempo channel plays: played by the engine itself on an offline output, one channel alone.

#include <sstream>

#include "tests/engine/show.h"
#include "tests/support/approved.h"

namespace zv::engine::test {
namespace {

constexpr std::uint32_t kRate = 44100;
constexpr std::size_t kPiece = 256;  ///< frames from one look at the position to the next

class TempoProcessor : public Show {
  protected:
    TempoProcessor() {
        engineControl()->install({decoders, devices});
        openMain();
    }

    /// A tempo channel over a sound of its own, on the output, from its beginning to its end.
    class Player {
      public:
        Player(TempoProcessor& show, std::vector<float> stereo) : sound(std::move(stereo)), show_(show) {
            range = {frames(), 0, false};
            show.decoders->sounds["own"] = {.length = frames(), .sample = [this](auto frame, auto side) {
                                                return sound[2 * frame + side];
                                            }};
            channel = BASS_FX_TempoCreate(file("own"), BASS_FX_FREESOURCE);
            show.take();
        }
        ~Player() { BASS_StreamFree(channel); }
        void setRange(const PlayRange& wanted) {
            range = wanted;
            BASS_ChannelSetPosition(channel, bytes(range.end), BASS_POS_END);
            BASS_ChannelSetPosition(channel, bytes(range.loopStart), BASS_POS_LOOP);
            BASS_ChannelFlags(channel, range.loop ? BASS_SAMPLE_LOOP : 0, BASS_SAMPLE_LOOP);
        }
        void moveTo(std::uint64_t frame) { BASS_ChannelSetPosition(channel, bytes(frame), BASS_POS_BYTE); }
        void setParameters(const TempoParameters& to) {
            BASS_ChannelSetAttribute(channel, BASS_ATTRIB_TEMPO, static_cast<float>(to.tempo));
            BASS_ChannelSetAttribute(channel, BASS_ATTRIB_TEMPO_PITCH, static_cast<float>(to.pitch));
            BASS_ChannelSetAttribute(channel, BASS_ATTRIB_TEMPO_FREQ, static_cast<float>(to.rate * kRate));
        }
        void slide(TempoPart part, double to, std::uint64_t frames, bool ratios) {
            constexpr DWORD attributes[] = {BASS_ATTRIB_TEMPO, BASS_ATTRIB_TEMPO_PITCH,
                                            BASS_ATTRIB_TEMPO_FREQ};
            BASS_ChannelSlideAttribute(
                channel, attributes[static_cast<std::size_t>(part)] | (ratios ? BASS_SLIDE_LOG : 0),
                static_cast<float>(part == TempoPart::Rate ? to * kRate : to),
                static_cast<DWORD>(frames * 1000 / kRate));
        }
        /// Appends up to `count` frames to `heard`.
        void play(std::size_t count) {
            BASS_ChannelPlay(channel, false);
            const std::size_t until = heard.size() / 2 + count;
            while (heard.size() / 2 < until && !over) {
                const std::size_t frames = std::min(kPiece, until - heard.size() / 2);
                show_.devices->setPeriod(static_cast<std::uint32_t>(frames));
                show_.pull(frames);
                const std::vector<float> piece = show_.take();
                heard.insert(heard.end(), piece.begin(), piece.end());
                over = BASS_ChannelIsActive(channel) == BASS_ACTIVE_STOPPED;
            }
            while (over && heard.size() > 2 && heard.back() == 0 && heard[heard.size() - 2] == 0)
                heard.resize(heard.size() - 2);
        }
        std::uint64_t place() const { return BASS_ChannelGetPosition(channel, BASS_POS_BYTE) / 4; }
        std::uint64_t frames() const { return sound.size() / 2; }
        bool stretched() const { return Engine::instance().find(channel)->audio.stretched; }

        std::vector<float> sound;
        DWORD channel = 0;
        PlayRange range;
        std::vector<float> heard;
        bool over = false;

      private:
        static QWORD bytes(std::uint64_t frame) { return frame * 4; }
        TempoProcessor& show_;
    };
};

/// Of each way to play with each parameter, every 2,048 frames: position, mean size and crossings of zero of what was
/// heard, "~" while it is stretched; at last how often each sync was told. The sound grows, so its size tells its place.
TEST_F(TempoProcessor, GoesEveryWayAsApproved) {
    constexpr std::uint64_t kLook = 2048, kFrames = 40'000;
    constexpr std::uint64_t kSyncs[] = {3000, 9999, 10'000, 14'999, 15'000, kFrames};
    std::vector<float> sound = sine(440.0, kRate, kFrames);
    for (std::uint64_t i = 0; i < sound.size(); ++i)
        sound[i] *= 0.1F + static_cast<float>(i) / static_cast<float>(sound.size());
    const PlayRange whole{kFrames, 0, false}, loop{15'000, 10'000, true}, part{15'000, 0, false};
    const struct {
        const char* name;
        std::function<void(Player&, const TempoParameters&, int)> act;  ///< before look `k`
    } ways[] = {
        {"from the start, then neutral",
         [](auto& p, auto& to, int k) {
             if (k == 0) p.setParameters(to);
             if (k == 8) p.setParameters({});
         }},
        {"while it plays, then another",
         [](auto& p, auto& to, int k) {
             if (k == 2) p.setParameters(to);
             if (k == 7) p.setParameters({to.tempo / 2, to.pitch + 3, 1});
         }},
        {"slides there and back",
         [](auto& p, auto& to, int k) {
             const bool back = k == 6;
             if (k != 1 && !back) return;
             p.slide(TempoPart::Tempo, back ? 0 : to.tempo, 6000, true);
             p.slide(TempoPart::Pitch, back ? 0 : to.pitch, 6000, false);
             p.slide(TempoPart::Rate, back ? 1 : to.rate, 6000, false);
         }},
        {"in a loop that is moved, and left",
         [&](auto& p, auto& to, int k) {
             if (k == 0) p.setParameters(to), p.setRange(loop), p.moveTo(6000);
             if (k == 6) p.setRange({15'000, 12'000, true});
             if (k == 10) p.setRange(whole);
         }},
        {"a loop that is set, an end, then none",
         [&](auto& p, auto& to, int k) {
             if (k == 0) p.setParameters(to), p.moveTo(9000);
             if (k == 1) p.setRange(loop);
             if (k == 4) p.setRange(part);
             if (k == 5) p.setRange(whole);
         }},
        {"an end before which it is moved",
         [&](auto& p, auto& to, int k) {
             if (k == 0) p.setParameters(to), p.setRange(part);
             if (k == 3) p.moveTo(12'000);
             if (k == 9) p.moveTo(14'000), p.over = false;
         }},
    };
    std::ostringstream all;
    for (const auto& way : ways) {
        all << way.name << '\n';
        for (const TempoParameters& to : {TempoParameters{-45, 0, 1}, TempoParameters{0, 5, 1},
                                          TempoParameters{0, 0, 0.6}, TempoParameters{150, -7, 1.2}}) {
            Player player(*this, sound);
            int told[std::size(kSyncs)]{};
            for (std::size_t i = 0; i < std::size(kSyncs); ++i)
                BASS_ChannelSetSync(
                    player.channel, BASS_SYNC_POS, kSyncs[i] * 4,
                    [](HSYNC, DWORD, DWORD, void* user) { ++*static_cast<int*>(user); }, &told[i]);
            all << "  " << to.tempo << ' ' << to.pitch << ' ' << to.rate << ':';
            for (int k = 0; k < 13; ++k) {
                way.act(player, to, k);
                const std::size_t from = player.heard.size() / 2;
                if (!player.over) player.play(kLook);
                double size = 0;
                int turns = 0;
                for (std::size_t i = from; i < player.heard.size() / 2; ++i) {
                    size += std::fabs(player.heard[2 * i]) / kLook;
                    turns += i > from && (player.heard[2 * i] < 0) != (player.heard[2 * i - 2] < 0);
                }
                all << ' ' << player.place() << '/' << std::lround(1000 * size) << '/' << turns
                    << (player.stretched() ? "~" : "");
            }
            all << " syncs";
            for (const int count : told) all << ' ' << count;
            all << '\n';
        }
    }
    zv::test::expectApproved("engine/tempo.txt", all.str());
}

}  // namespace
}  // namespace zv::engine::test
