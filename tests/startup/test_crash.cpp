// Nothing is ever half there: a process that saves is killed at random moments, and the disk fills up.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

#include <random>
#include <thread>

#include "startup/backups.h"
#include "startup/datafiles.h"
#include "startup/impulse.h"
#include "startup/settings.h"
#include "startup/stores.h"
#include "tests/startup/surroundings.h"

namespace zv::test {
namespace {

namespace fs = std::filesystem;

constexpr int kJingles = 60;
constexpr int kKills = 500;

class Crash : public ProgramFolderTest {
  protected:
    static std::vector<cImpulse::Line> palette(int generation) {
        std::vector<cImpulse::Line> lines;
        for (int i = 0; i < kJingles; ++i) {
            lines.emplace_back("Path_" + std::to_string(i),
                               "Generation " + std::to_string(generation) + ".wav");
            lines.emplace_back("Volm_" + std::to_string(i), std::to_string(generation));
        }
        return lines;
    }

    /// A busy session: palettes, hot jingles and settings are saved and the backups turn, for ever.
    [[noreturn]] static void session(int from) {
        for (int generation = from;; ++generation) {
            PaletteStore.PutSection("Morning", palette(generation));
            PaletteStore.PutSection(generation % 2 == 0 ? "Even" : "Odd", palette(generation));
            HotStore.PutSection(kHotSection, palette(generation));
            settings.RemainWarn = generation % 60;
            settings.AutoMixTime = generation;
            SaveZVini();
            RotatingBackup("palette");
            if (generation % 3 == 0) PaletteStore.DeleteSection("Odd");
        }
    }

    /// Every section of a file of palettes is whole and of one generation; returns the newest one.
    int newestOf(const std::string& name) {
        cImpulse store;
        store.SetIniPath((folder / name).string());
        store.ListSections();
        int newest = 0;
        for (int i = 0; i < store.SectionCount(); ++i) {
            const auto lines = store.GetSectionLines(store.SectionName(i));
            EXPECT_EQ(lines.size(), 2U * kJingles) << name << " " << store.SectionName(i);
            const int generation = lines.empty() ? -1 : std::atoi(lines[1].second.c_str());
            EXPECT_EQ(lines, palette(generation)) << name;
            newest = std::max(newest, generation);
        }
        return newest;
    }
};

TEST_F(Crash, KilledAtAnyMoment) {
    OpenIniFile();
    LoadZVini();
    int reached = 1;
    int hotReached = 1;
    PaletteStore.PutSection("Morning", palette(reached));
    PaletteStore.PutSection("Keep", palette(reached));
    HotStore.PutSection(kHotSection, palette(reached));
    const auto settingsLines = SettingsStore.GetSectionLines(kSettingsSection).size();
    std::mt19937 random(99);
    int advanced = 0;
    for (int kill = 0; kill < kKills; ++kill) {
        const pid_t child = ::fork();
        if (child == 0) session(reached + 1);
        std::this_thread::sleep_for(std::chrono::microseconds(300 + random() % 6000));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));  // it did not end by itself
        const int now = newestOf("palette.ini");
        ASSERT_GE(now, reached);
        const int hot = newestOf("HotJingles.ini");
        ASSERT_GE(hot, hotReached);
        hotReached = hot;
        for (int k = 1; k <= kBackups; ++k) newestOf("palette_backup" + std::to_string(k) + ".ini");
        EXPECT_EQ(PaletteStore.GetSectionLines("Keep"), palette(1));
        ASSERT_GE(SettingsStore.GetSectionLines(kSettingsSection).size(), settingsLines);
        if (::testing::Test::HasFailure()) break;
        advanced += now > reached ? 1 : 0;
        reached = now;
    }
    EXPECT_GT(advanced, kKills / 4);  // the kills did meet a session at work
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == ".zvtmp")
            fs::last_write_time(entry.path(), fs::file_time_type::clock::now() - std::chrono::hours(1));
    }
    SweepTemporaries();
    for (const auto& entry : fs::directory_iterator(folder))
        EXPECT_NE(entry.path().extension(), ".zvtmp") << entry.path();
}

TEST_F(Crash, FullDisk) {
    PaletteStore.PutSection("Morning", palette(1));
    PaletteStore.PutSection("Evening", palette(1));
    write("zv.ini", "[Settings]\r\nRemainWarn=3\r\n");
    const std::string before = read("palette.ini");
    rlimit old{};
    ::getrlimit(RLIMIT_FSIZE, &old);
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit little = old;
    little.rlim_cur = 600;  // bytes a file may have from now on: a write stops in its middle
    ::setrlimit(RLIMIT_FSIZE, &little);
    EXPECT_FALSE(PaletteStore.PutSection("Morning", palette(2)));
    PaletteStore.PutValue("Path_0", "other.wav", "Evening");
    RotatingBackup("palette");
    LoadZVini();
    ::setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(read("palette.ini"), before);
    EXPECT_EQ(PaletteStore.GetValue("Path_0", 0, "Morning"), "Generation 1.wav");
    EXPECT_FALSE(there("palette_backup1.ini"));
    EXPECT_EQ(read("zv.ini"), "[Settings]\r\nRemainWarn=3\r\n");
    EXPECT_EQ(settings.JinglesRows, 6);  // the defaults hold although they could not be written
    for (const auto& entry : fs::directory_iterator(folder)) EXPECT_NE(entry.path().extension(), ".zvtmp");
    EXPECT_TRUE(PaletteStore.PutSection("Morning", palette(2)));
}

}  // namespace
}  // namespace zv::test
