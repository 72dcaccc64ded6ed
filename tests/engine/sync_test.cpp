// Syncs: on the right frame, once, never late; what they command acts a period later at most.

#include <future>

#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

struct Fired {
    int count = 0;
    QWORD position = 0;
    DWORD channel = 0;
    std::thread::id thread;
    float slideMs = -1;
};

void note(HSYNC, DWORD channel, DWORD, void* user) {
    auto& fired = *static_cast<Fired*>(user);
    ++fired.count;
    fired.channel = channel;
    fired.position = BASS_ChannelGetPosition(channel, BASS_POS_BYTE);
    fired.thread = std::this_thread::get_id();
    if (fired.slideMs >= 0)
        BASS_ChannelSlideAttribute(channel, BASS_ATTRIB_VOL, -1, static_cast<DWORD>(fired.slideMs));
}

class Syncs : public Show {
  protected:
    Topology studio;
    DWORD source = file("one");
    DWORD jingle = studio.jingle(source);
    Fired fired;

    HSYNC at(std::uint64_t frame, DWORD type = BASS_SYNC_POS | BASS_SYNC_ONETIME) {
        return BASS_ChannelSetSync(jingle, type, frame * 4, note, &fired);
    }
};

TEST_F(Syncs, AFadeOrderedThereBeginsAPeriodLaterAtMost) {
    fired.slideMs = 100;
    pull(4410);
    take();
    BASS_ChannelPlay(jingle, false);
    at(1000);
    const std::vector<float> sound = pullAndTake(44100);
    EXPECT_EQ(fired.count, 1);
    EXPECT_EQ(fired.channel, jingle);
    EXPECT_NE(fired.thread, std::this_thread::get_id());
    std::size_t fade = 0;
    while (sound[fade * 2] == 1) ++fade;
    EXPECT_GE(fade, 1000U);
    EXPECT_LE(fade, 1000U + 441);
    std::size_t end = fade;
    while (sound[end * 2] > 0) ++end;
    EXPECT_NEAR(static_cast<double>(end - fade), 4410, 1);
    EXPECT_EQ(BASS_ChannelIsActive(jingle), BASS_ACTIVE_STOPPED);
}

TEST_F(Syncs, ASlideThatIsTiedToOneBeginsWithItsVeryFrame) {
    decoders->sounds["faster"] = {
        .format = {48000, 2, 16}, .length = 48000, .sample = [](auto, auto) { return 1.0F; }};
    const DWORD converted = studio.jingle(file("faster"));
    const struct {
        DWORD play;
        std::uint64_t frame;
        double heard;
    } rows[] = {{jingle, 1000, 1000}, {jingle, 1, 1}, {converted, 4800, 4410}, {converted, 2400, 2205}};
    for (const std::uint32_t period : {1U, 64U, 441U, 997U}) {
        devices->setPeriod(period);
        for (const auto& row : rows) {
            for (const DWORD ms : {DWORD{0}, DWORD{100}}) {
                BASS_ChannelSetPosition(row.play, 0, BASS_POS_BYTE);
                BASS_ChannelSetAttribute(row.play, BASS_ATTRIB_VOL, 1);
                pull(997);
                take();
                fired = {};
                BASS_ChannelPlay(row.play, false);
                const HSYNC sync = BASS_ChannelSetSync(row.play, BASS_SYNC_POS | BASS_SYNC_ONETIME,
                                                       row.frame * 4, note, &fired);
                ASSERT_TRUE(engineControl()->slideAtSync(row.play, sync, -1, ms, false));
                const std::vector<float> sound = pullAndTake(22050);
                std::size_t first = 0, last = sound.size() / 2;
                while (first < last && sound[first * 2] < 0.3F) ++first;
                while (last > first && sound[last * 2 - 2] <= 1e-4F) --last;
                const double wanted = row.heard + ms * 44.1;
                const std::string where =
                    std::to_string(period) + " " + std::to_string(row.frame) + " " + std::to_string(ms);
                EXPECT_NEAR(static_cast<double>(last - first), wanted, row.play == jingle ? 2 : 24) << where;
                EXPECT_EQ(fired.count, 1) << where;
                EXPECT_EQ(BASS_ChannelIsActive(row.play), BASS_ACTIVE_STOPPED) << where;
            }
        }
    }
    EXPECT_FALSE(engineControl()->slideAtSync(jingle, 12345, -1, 0, false));
}

TEST_F(Syncs, ThoseThatWereNotReachedWaitUntilTheyAreRemoved) {
    // A program sets its stop position anew at every press, and removes the old one.
    std::vector<HSYNC> waiting;
    for (int press = 0; press < 50; ++press) {
        BASS_ChannelSetPosition(jingle, 0, BASS_POS_BYTE);
        BASS_ChannelPlay(jingle, false);
        waiting.push_back(at(100000));
        pull(441);
        BASS_ChannelStop(jingle);
    }
    for (std::size_t i = 1; i < waiting.size(); ++i) EXPECT_TRUE(BASS_ChannelRemoveSync(jingle, waiting[i]));
    pull(441);
    const SyncNode* kept = Engine::instance().find(jingle)->audio.syncs;
    ASSERT_TRUE(kept);
    EXPECT_FALSE(kept->next) << "what was removed has gone from the audio side too";
    for (int turn = 0; turn < 2; ++turn) {
        BASS_ChannelSetPosition(jingle, 99900 * 4, BASS_POS_BYTE);
        BASS_ChannelPlay(jingle, false);
        pull(441);
        EXPECT_EQ(fired.count, 1) << turn;
    }
}

/// Who frees or removes may throw away what the procedure uses.
TEST_F(Syncs, FreeingAndRemovingWaitForAProcedureThatRuns) {
    struct Gate {
        std::atomic<bool> inside{false}, open{false};
    };
    const auto wait = [](HSYNC, DWORD, DWORD, void* user) {
        auto& gate = *static_cast<Gate*>(user);
        gate.inside = true;
        while (!gate.open) std::this_thread::yield();
    };
    for (const bool frees : {false, true}) {
        Gate gate;
        const DWORD other = studio.jingle(file("one"));
        const HSYNC sync = BASS_ChannelSetSync(other, BASS_SYNC_POS, 100 * 4, wait, &gate);
        BASS_ChannelPlay(other, false);
        auto pulling = std::async(std::launch::async, [&] { pull(882); });
        while (!gate.inside) std::this_thread::yield();
        EXPECT_EQ(BASS_ChannelIsActive(other), BASS_ACTIVE_PLAYING) << "nobody else waits";
        auto gone = std::async(std::launch::async, [&] {
            return frees ? BASS_StreamFree(other) : BASS_ChannelRemoveSync(other, sync);
        });
        EXPECT_EQ(gone.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout) << frees;
        gate.open = true;
        EXPECT_TRUE(gone.get());
        pulling.get();
    }
}

}  // namespace
}  // namespace zv::engine::test
