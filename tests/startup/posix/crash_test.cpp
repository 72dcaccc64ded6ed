// Nothing is ever half there: the disk fills up, what a killed program left goes, links and permissions stay. A
// presenter's steps are killed in tests/ui/keeping_chance_test.cpp.
#include <sys/resource.h>
#include <csignal>

#include <chrono>

#include "startup/settings/grid_settings.h"
#include "startup/settings_file.h"
#include "tests/startup/surroundings.h"

namespace zv::test {
namespace {

constexpr int kJingles = 60;

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
};

TEST_F(Crash, WhatAKilledProgramLeftIsSweptAndWhatAnotherOneWritesStays) {
    write("palette.ini.1.zvtmp", "half");
    write("palette.ini.2.zvtmp", "half");
    fs::last_write_time(folder / "palette.ini.1.zvtmp",
                        fs::file_time_type::clock::now() - std::chrono::hours(1));
    SweepTemporaries();
    EXPECT_FALSE(there("palette.ini.1.zvtmp"));
    EXPECT_TRUE(there("palette.ini.2.zvtmp"));
    fs::remove(folder / "palette.ini.2.zvtmp");
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
    SaveZVini();
    ::setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(read("palette.ini"), before);
    EXPECT_EQ(PaletteStore.GetValue("Path_0", 0, "Morning"), "Generation 1.wav");
    EXPECT_FALSE(there("palette_backup1.ini"));
    EXPECT_EQ(read("zv.ini"), "[Settings]\r\nRemainWarn=3\r\n");
    EXPECT_EQ(gridSettings.JinglesRows, 6);  // the defaults hold although they could not be written
    for (const auto& entry : fs::directory_iterator(folder)) EXPECT_NE(entry.path().extension(), ".zvtmp");
    EXPECT_TRUE(PaletteStore.PutSection("Morning", palette(2)));
}

TEST_F(Crash, RewritingKeepsLinksAndPermissions) {
    cImpulse store;
    store.SetIniPath(text("test.ini"));
    write("real.ini", "[S]\nk=v\n");
    fs::permissions(path("real.ini"), fs::perms(0640));
    fs::create_symlink("real.ini", path("test.ini"));
    store.PutValue("k", "w", "S");
    EXPECT_TRUE(fs::is_symlink(path("test.ini")));
    EXPECT_EQ(read("real.ini"), "[S]\nk=w\n");
    EXPECT_EQ(fs::status(path("real.ini")).permissions(), fs::perms(0640));
}

}  // namespace
}  // namespace zv::test
