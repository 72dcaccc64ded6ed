#include "tests/startup/surroundings.h"

#include <unistd.h>

#include <fstream>
#include <iterator>

#include "engine/bass.h"
#include "platform/paths.h"
#include "startup/errors.h"
#include "startup/settings.h"
#include "startup/stores.h"
#include "startup/upcalls.h"

namespace zv::test {

Surroundings around;

void ProgramFolderTest::SetUp() {
    // In memory where that can be had: what is tested is what the files hold, not how fast the disk flushes.
    const bool memory = ::access("/dev/shm", W_OK) == 0;
    const std::filesystem::path base = memory ? "/dev/shm" : std::filesystem::temp_directory_path();
    std::string name = (base / "zv-startup-XXXXXX").string();
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    folder = name;
    around = {};
    settings = {};
    startupUpcalls = {};
    ErrCount = 0;
    ErrorLogOn = false;
    setProgramFolder(name);
    setShippedFolder(name + "/shipped");
    SetStorePaths();
}

void ProgramFolderTest::TearDown() {
    std::error_code error;
    std::filesystem::remove_all(folder, error);
}

void ProgramFolderTest::write(const std::string& name, const std::string& bytes) const {
    std::filesystem::create_directories(path(name).parent_path());
    std::ofstream(path(name), std::ios::binary) << bytes;
}

std::string ProgramFolderTest::read(const std::string& name) const {
    std::ifstream in(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace zv::test

namespace zv {

using test::around;

std::int64_t monotonicMs() { return around.nowMs; }
WallTime wallTime() { return around.wall; }
void sleepMs(int ms) { around.nowMs += ms; }

BoxAnswer messageBox(const std::string& text, const std::string&, BoxKind, BoxButtons) {
    around.boxes.push_back(text);
    return around.answer;
}
void setClipboard(const std::string& text) { around.clipboard = text; }
std::string systemDescription() { return "Test system - Version: 1"; }
bool systemIsFrench() { return around.french; }
bool fontInstalled(const std::string&) { return around.fontsThere; }
void openDocument(const std::string&) {}
void setAlwaysOnTop(Control&, bool) {}
void selectAllText(Control&) {}
bool setProcessPriority(int) { return true; }

}  // namespace zv

extern "C" int BASS_ErrorGetCode() { return zv::test::around.engineError; }
