// What the ground floor asks of its surroundings, answered for the tests, and a folder of its own for each
// test.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <set>
#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/paths.h"
#include "startup/backups.h"
#include "startup/datafiles.h"
#include "startup/errors.h"
#include "startup/helpers.h"
#include "startup/impulse.h"
#include "startup/instance_lock.h"
#include "startup/stores.h"
#include "startup/upcalls.h"

namespace zv::test {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;

/// The answers; reset for each test.
struct Surroundings {
    std::int64_t nowMs = 1000;
    WallTime wall{2026, 1, 31, 6, 14, 5, 9, 0};
    int engineError = 0;
    bool french = false;
    bool fontsThere = true;
    BoxAnswer answer = BoxAnswer::no;
    std::vector<std::string> boxes;  ///< texts of the message boxes shown
    std::string clipboard;
};
extern Surroundings around;

/// The variable under which the system names the folder of users' data.
#ifdef _WIN32
inline constexpr const char* kDataVariable = "APPDATA";
#else
inline constexpr const char* kDataVariable = "XDG_DATA_HOME";
#endif
/// Empty counts as not set.
void setVariable(const char* name, const std::string& value);

/// A program folder of its own, with all stores on it; gone afterwards.
class ProgramFolderTest : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    std::filesystem::path path(const std::string& name) const { return folder / pathFromUtf8(name); }
    /// The same as the system writes it.
    std::string text(const std::string& name) const { return utf8FromPath(path(name).make_preferred()); }
    /// Writes and reads without the code under test.
    void write(const std::string& name, const std::string& bytes) const;
    std::string read(const std::string& name) const;
    bool there(const std::string& name) const { return std::filesystem::exists(path(name)); }

    std::filesystem::path folder;
};

}  // namespace zv::test
