// Syncs whose procedures still run, or are still due, when their channel is changed.

#include <future>

#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

class Syncs : public Show {
  protected:
    Topology studio;
};

/// A procedure that runs until it is let go.
struct Gate {
    std::atomic<bool> inside{false}, open{false};
    static void wait(HSYNC, DWORD, DWORD, void* user) {
        auto& gate = *static_cast<Gate*>(user);
        gate.inside = true;
        while (!gate.open) std::this_thread::yield();
    }
};

/// Who frees or removes may throw away what the procedure uses.
TEST_F(Syncs, FreeingAndRemovingWaitForAProcedureThatRuns) {
    for (const bool frees : {false, true}) {
        Gate gate;
        const DWORD other = studio.jingle(file("one"));
        const HSYNC sync = BASS_ChannelSetSync(other, BASS_SYNC_POS, 100 * 4, Gate::wait, &gate);
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

TEST_F(Syncs, AnOldOneWhoseProcedureIsStillDueDoesNotEndTheNewPlay) {
    for (const bool moved : {true, false}) {
        Gate gate;  // of a jingle that is rendered before the other one
        const DWORD first = studio.jingle(file("one")), other = studio.jingle(file("one"));
        BASS_ChannelSetSync(first, BASS_SYNC_POS, 100 * 4, Gate::wait, &gate);
        const HSYNC old = BASS_ChannelSetSync(
            other, BASS_SYNC_POS | BASS_SYNC_ONETIME, 200 * 4,
            [](HSYNC, DWORD channel, DWORD, void*) { BASS_ChannelStop(channel); }, nullptr);
        for (const DWORD channel : {first, other}) BASS_ChannelPlay(channel, false);
        auto pulling = std::async(std::launch::async, [&] { pull(882); });
        while (!gate.inside) std::this_thread::yield();
        EXPECT_GE(BASS_ChannelGetPosition(other, BASS_POS_BYTE), 200U * 4) << "it has been passed";
        BASS_ChannelStop(other);
        if (moved) BASS_ChannelSetPosition(other, 100 * 4, BASS_POS_BYTE);
        if (!moved) BASS_ChannelRemoveSync(other, old);
        BASS_ChannelPlay(other, false);
        gate.open = true;
        pulling.get();
        pull(4410);
        EXPECT_EQ(BASS_ChannelIsActive(other), BASS_ACTIVE_PLAYING) << moved;
    }
}

}  // namespace
}  // namespace zv::engine::test
