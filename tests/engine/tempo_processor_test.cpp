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
    /// A tempo channel over a sound of its own, on the output, from its beginning to its end.
    class Player {
      public:
        Player(TempoProcessor& show, const std::vector<float>& stereo, SoundFormat format)
            : show_(show), format_(format) {
            show.decoders->sounds["own"] = {
                .format = format, .length = stereo.size() / 2, .sample = [&](auto frame, auto side) {
                    return stereo[2 * frame + side];
                }};
            channel = BASS_FX_TempoCreate(source = file("own"), BASS_FX_FREESOURCE);
            show.take();
        }
        ~Player() { BASS_StreamFree(channel); }
        void setRange(const PlayRange& wanted) {
            BASS_ChannelSetPosition(channel, bytes(wanted.end), BASS_POS_END);
            BASS_ChannelSetPosition(channel, bytes(wanted.loopStart), BASS_POS_LOOP);
            BASS_ChannelFlags(channel, wanted.loop ? BASS_SAMPLE_LOOP : 0, BASS_SAMPLE_LOOP);
        }
        void moveTo(std::uint64_t frame) {
            BASS_ChannelSetPosition(channel, bytes(frame), BASS_POS_BYTE);
            over = false;
        }
        void setParameters(const TempoParameters& to) {
            BASS_ChannelSetAttribute(channel, BASS_ATTRIB_TEMPO, static_cast<float>(to.tempo));
            BASS_ChannelSetAttribute(channel, BASS_ATTRIB_TEMPO_PITCH, static_cast<float>(to.pitch));
            BASS_ChannelSetAttribute(channel, BASS_ATTRIB_TEMPO_FREQ,
                                     static_cast<float>(to.rate * format_.rate));
        }
        void slide(TempoPart part, double to, std::uint64_t frames, bool ratios) {
            constexpr DWORD attributes[] = {BASS_ATTRIB_TEMPO, BASS_ATTRIB_TEMPO_PITCH,
                                            BASS_ATTRIB_TEMPO_FREQ};
            BASS_ChannelSlideAttribute(
                channel, attributes[static_cast<std::size_t>(part)] | (ratios ? BASS_SLIDE_LOG : 0),
                static_cast<float>(part == TempoPart::Rate ? to * format_.rate : to),
                static_cast<DWORD>(frames * 1000 / kRate));
        }
        /// Appends `count` frames to `heard`, or fewer when it ends.
        void play(std::size_t count) {
            BASS_ChannelPlay(channel, false);
            for (std::size_t done = 0; done < count && !over;) {
                const std::size_t frames = std::min(kPiece, count - done);
                show_.devices->setPeriod(static_cast<std::uint32_t>(frames));
                const std::vector<float> piece = show_.pullAndTake(frames);
                heard.insert(heard.end(), piece.begin(), piece.end());
                done += frames;
                places += place();
                over = BASS_ChannelIsActive(channel) == BASS_ACTIVE_STOPPED;
            }
        }
        std::uint64_t place() const { return BASS_ChannelGetPosition(channel, BASS_POS_BYTE) / bytes(1); }
        bool stretched() const { return Engine::instance().find(channel)->audio.stretched; }
        QWORD bytes(std::uint64_t frame) const { return frame * 2 * format_.channels; }

        DWORD channel = 0, source = 0;
        std::vector<float> heard;
        bool over = false;
        std::uint64_t places = 0;

      private:
        TempoProcessor& show_;
        const SoundFormat format_;
    };
};

/// Of each way to play with each parameter, every 2,048 frames: position, the sum of positions on the way, mean size in millionths of both sides, the
/// right one counted twice, and crossings of zero of what was heard, "~" while it is stretched; at last the frames that
/// sounded and how often each sync was told. The left side grows and the right one falls, so their sizes tell the place.
TEST_F(TempoProcessor, GoesEveryWayAsApproved) {
    constexpr std::uint64_t kLook = 2048, kFrames = 40'000;
    constexpr std::uint64_t kSyncs[] = {3000, 9999, 10'000, 14'999, 15'000, kFrames};
    std::vector<float> sound;
    for (std::uint64_t i = 0; i < kFrames; ++i) {
        const double place = static_cast<double>(i) / kFrames;
        sound.push_back(sine(i, 440, kRate, 0.1 + place));
        sound.push_back(sine(i, 610, kRate, 0.9 - 0.8 * place));
    }
    std::mt19937 random;
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
        {"slides there and back",
         [](auto& p, auto& to, int k) {
             const bool back = k == 6;
             if (k == 11) p.moveTo(3000);
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
        {"slides that cross each other, by ratios, through a stop",
         [&](auto& p, auto& to, int k) {
             if (k == 1) p.slide(TempoPart::Tempo, to.tempo, 9000, true);
             if (k == 2) p.slide(TempoPart::Pitch, to.pitch, 7000, true);
             if (k == 3) p.slide(TempoPart::Rate, to.rate, 5000, true);
             if (k == 4) p.slide(TempoPart::Tempo, 20, 3000, false);
             if (k == 6) p.slide(TempoPart::Tempo, 0, 9000, true), BASS_ChannelStop(p.channel), pull(5000);
             if (k == 7) p.setParameters({10, 0, 1}), p.moveTo(8000);
             if (k == 9) p.slide(TempoPart::Tempo, 0, 2500, true);
         }},
        {"anything",
         [&](auto& p, auto& to, int) {
             for (int i = 0; i < 16; ++i) {
                 const auto below = [&](unsigned n) { return static_cast<unsigned>(random() % n); };
                 const std::uint64_t begin = below(41) * 1000, end = begin + 200 + below(9) * 1000;
                 const unsigned what = below(11);
                 if (what < 2) p.setParameters(what == 0 ? to : TempoParameters{});
                 if (what == 2) p.setParameters({to.tempo / 2, to.pitch - 1, 1});
                 if (what == 3) p.slide(TempoPart::Tempo, below(2) == 0 ? 0 : to.tempo, below(4000), true);
                 if (what == 4) p.slide(TempoPart::Pitch, below(2) == 0 ? 0 : to.pitch, below(4000), false);
                 if (what == 5) p.setRange(below(2) == 0 ? whole : PlayRange{end, begin, true});
                 if (what == 6) p.moveTo(begin);
                 if (what == 7) p.moveTo(p.place() + below(400));
                 if (what == 8) p.setRange({p.place() + 50 + below(300), p.place() - p.place() / 4, true});
                 if (what > 8 && below(3) == 0) BASS_ChannelStop(p.channel);
                 if (what == 9) p.setParameters(to), pull(below(3000));
                 if (what == 10) pull(300), p.moveTo(p.place());
                 p.play(below(5) == 0 ? 0 : below(i % 2 == 0 ? 200 : 1500));
             }
         }},
    };
    std::ostringstream all;
    for (const auto& way : ways) {
        all << way.name << ':';
        for (const auto& [to, format] : {std::pair{TempoParameters{-45, 0, 1}, SoundFormat{kRate, 2, 16}},
                                         {TempoParameters{0, 5, 1}, SoundFormat{48000, 2, 16}},
                                         {TempoParameters{0, 0, 0.6}, SoundFormat{kRate, 1, 16}},
                                         {TempoParameters{150, -7, 1.2}, SoundFormat{kRate, 2, 16}}}) {
            begin({});
            openMain();
            random.seed(5);
            Player player(*this, sound, format);
            int told[std::size(kSyncs)]{};
            for (std::size_t i = 0; i < std::size(kSyncs); ++i)
                BASS_ChannelSetSync(
                    i % 2 == 0 ? player.channel : player.source, BASS_SYNC_POS, player.bytes(kSyncs[i]),
                    [](HSYNC, DWORD, DWORD, void* user) { ++*static_cast<int*>(user); }, &told[i]);
            all << "  " << to.tempo << ' ' << to.pitch << ' ' << to.rate << ':';
            std::size_t sounded = 0;
            for (int k = 0; k < 13; ++k) {
                way.act(player, to, k);
                if (!player.over) player.play(kLook);
                const std::vector<float> heard = std::exchange(player.heard, {});
                sounded += heard.size() / 2;
                double size = 0;
                int turns = 0;
                for (std::size_t i = 0; i < heard.size(); i += 2) {
                    size += (std::fabs(heard[i]) + 2 * std::fabs(heard[i + 1])) / kLook;
                    turns += i > 0 && (heard[i] < 0) != (heard[i - 2] < 0);
                }
                all << ' ' << player.place() << '/' << std::exchange(player.places, 0) << '/'
                    << std::lround(1e6 * size) << '/' << turns << (player.stretched() ? "~" : "");
            }
            all << " sounded " << sounded << " syncs";
            for (const int count : told) all << ' ' << count;
            all << '\n';
        }
    }
    zv::test::expectApproved("engine/tempo.txt", all.str());
}

}  // namespace
}  // namespace zv::engine::test
