/// A studio for the tests: a program folder of its own, the engine on offline devices, time that renders
/// sound.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/bass.h"
#include "platform/offline/offline_devices.h"
#include "tests/support/sound.h"

namespace zv::test {

/// "FadeOut=200 StopPos=500" as lines of a palette for slot `number`; positions stand in ms and become bytes.
std::string paletteLines(const std::string& keys, int number);

/// A folder of its own, gone afterwards.
struct FolderGuard {
    FolderGuard();
    ~FolderGuard();
    FolderGuard(const FolderGuard&) = delete;
    FolderGuard& operator=(const FolderGuard&) = delete;
    std::filesystem::path path;
};

/// A program folder with all stores on it and the settings at their defaults; gone afterwards.
class FolderTest : public ::testing::Test {
  protected:
    FolderTest();
    ~FolderTest() override;

    std::filesystem::path path(const std::string& name) const { return folder / name; }
    void write(const std::string& name, const std::string& bytes) const;
    std::string read(const std::string& name) const;

    const FolderGuard own;
    const std::filesystem::path& folder = own.path;
    std::vector<std::string> marks;    ///< ErrDisp: mode, and ": " text when there is one
    std::vector<std::string> reports;  ///< titles of the error reports
};

/// The same with sound. The mix topology is up when the test begins.
class StudioTest : public FolderTest {
  protected:
    explicit StudioTest(OfflineOptions options = {});
    ~StudioTest() override;

    /// Time goes on; timers that fall due fire.
    void pass(int ms);
    /// Performs "0 press 200 press": a number is a time from now in ms, each word behind it goes to `act`.
    void perform(const std::string& acts, const std::function<void(const std::string& word)>& act);
    /// What output 0 (main) or 1 (auxiliary) sent since it was last asked.
    Heard heard(int output = 0);

    std::shared_ptr<OfflineDevices> devices;
    OfflineOptions options;
};

}  // namespace zv::test
