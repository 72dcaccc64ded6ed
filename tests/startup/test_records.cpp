// Timers and paths: the order of firing, what a path means here.

#include "platform/timers.h"
#include "tests/startup/surroundings.h"

namespace zv::test {
namespace {

class Timers : public ::testing::Test {
  protected:
    void SetUp() override { around = {}; }
    std::function<void()> note(const std::string& name) {
        return [this, name] { fired.push_back(name); };
    }
    void advance(int ms) {
        around.nowMs += ms;
        fireDueTimers(around.nowMs);
    }
    std::vector<std::string> fired;
};

TEST_F(Timers, FireByDueTimeThenDeclaration) {
    Timer late("late", 30, note("late")), a("a", 10, note("a")), b("b", 10, note("b")),
        off("off", 1, note("off"));
    Timer never("never", 0, note("never"));
    for (Timer* t : {&b, &a, &late, &never}) t->start();
    EXPECT_EQ(nextTimerDue(), around.nowMs + 10);
    advance(10);
    EXPECT_THAT(fired, ElementsAre("a", "b"));
    fired.clear();
    advance(20);  // late is due at 30, a and b were at 20
    EXPECT_THAT(fired, ElementsAre("a", "b", "late"));
    fired.clear();
    advance(1000);  // each once, not once per interval missed
    EXPECT_THAT(fired, ElementsAre("a", "b", "late"));
    EXPECT_EQ(nextTimerDue(), around.nowMs + 10);
}

TEST_F(Timers, KeepTheirBeat) {
    Timer t("t", 40, note("t"));
    t.start();
    around.nowMs += 43;  // three late: the next is not late because of it
    fireDueTimers(around.nowMs);
    EXPECT_EQ(nextTimerDue(), around.nowMs + 37);
    t.start();  // runs already: goes on as it is
    EXPECT_EQ(nextTimerDue(), around.nowMs + 37);
    t.restart();
    EXPECT_EQ(nextTimerDue(), around.nowMs + 40);
    t.setInterval(40);
    t.setInterval(100);
    EXPECT_EQ(nextTimerDue(), around.nowMs + 100);
    t.stop();
    EXPECT_EQ(nextTimerDue(), std::nullopt);
    EXPECT_EQ(findTimer("T"), &t);
    EXPECT_EQ(findTimer("x"), nullptr);
}

TEST_F(Timers, HandlersMayDoAnythingToTimers) {
    int rearmed = 0;
    onTimersChanged([&] { ++rearmed; });
    auto gone = std::make_unique<Timer>("gone", 10, note("gone"));
    Timer stopped("stopped", 10, note("stopped"));
    std::unique_ptr<Timer> born;
    Timer killer("killer", 5, [&] {
        fired.push_back("killer");
        gone.reset();
        stopped.stop();
        killer.restart();
        born = std::make_unique<Timer>("born", 5, note("born"));
        born->start();
        fireDueTimers(around.nowMs);  // as when a message box runs the events
    });
    gone->start();
    stopped.start();
    killer.start();
    EXPECT_EQ(rearmed, 3);
    advance(10);
    EXPECT_THAT(fired, ElementsAre("killer"));
    fired.clear();
    killer.stop();
    advance(5);
    EXPECT_THAT(fired, ElementsAre("born"));
    onTimersChanged({});
}

class Paths : public ProgramFolderTest {};

TEST_F(Paths, FilesAreToldApartAndReplacedWhole) {
    const fs::path file = path("caf\xC3\xA9 \xE2\x82\xAC.txt");
    EXPECT_EQ(fileState(file), FileState{});
    ASSERT_TRUE(replaceFile(file, "one"));
    const FileState first = fileState(file);
    EXPECT_TRUE(first.exists);
    EXPECT_EQ(first.size, 3U);
    ASSERT_TRUE(replaceFile(file, "two"));
    EXPECT_NE(fileState(file), first) << "within the same tick of the system's clock";
    EXPECT_NE(fileState(file).modified, first.modified);
    std::string contents = "before";
    EXPECT_TRUE(readFile(file, contents));
    EXPECT_EQ(contents, "two");
    fs::permissions(file, fs::perms::owner_read);
    EXPECT_FALSE(replaceFile(file, "three")) << "it may not be written";
    fs::permissions(file, fs::perms::owner_write, fs::perm_options::add);
    EXPECT_FALSE(readFile(folder, contents));
    EXPECT_EQ(contents, "two");
    fs::remove(file);
    EXPECT_TRUE(fs::is_empty(folder)) << "nothing temporary stays";
}

}  // namespace
}  // namespace zv::test
