#include "tests/startup/surroundings.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "engine/bass.h"
#include "platform/paths.h"
#include "startup/errors.h"
#include "startup/settings_file.h"
#include "startup/stores.h"
#include "startup/upcalls.h"

namespace zv::test {

Surroundings around;

void ProgramFolderTest::SetUp() {
    // In memory where that can be had: what is tested is what the files hold, not how fast the disk flushes.
    std::filesystem::path base = std::filesystem::temp_directory_path();
    for (const char* memory : {"/dev/shm", "T:\\"})
        if (std::filesystem::is_directory(memory)) base = memory;
    static int count = 0;
    folder = base / ("zv-startup-" + std::to_string(processNumber()) + "-" + std::to_string(++count));
    ASSERT_TRUE(std::filesystem::create_directory(folder));
    const std::string name = utf8FromPath(folder);
    around = {};
    ResetSettings();
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

void setVariable(const char* name, const std::string& value) {
#ifdef _WIN32
    ::_putenv_s(name, value.c_str());
#else
    ::setenv(name, value.c_str(), 1);
#endif
}

}  // namespace zv::test

namespace zv {

using test::around;

std::int64_t monotonicMs() { return around.nowMs; }
WallTime wallTime() { return around.wall; }
void sleepMs(int ms) { around.nowMs += ms; }

BoxAnswer messageBox(const std::string& text, const std::string&, BoxKind, BoxButtons, const BoxWords&) {
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
