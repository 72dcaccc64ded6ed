#include "benchmarks/program.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <system_error>

#include "app/start.h"
#include "platform/qt/view/shell.h"
#include "platform/rehearsal/rehearsal.h"
#include "ui/records/main_window.h"

namespace zv::bench {

namespace fs = std::filesystem;

Home::Home(const std::string& name)
    : folder_(fs::temp_directory_path() / ("zentrova-bench-" + std::to_string(getpid()) + "-" + name)) {
    fs::create_directories(folder_ / "out");
}

Home::~Home() {
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

std::string executables() { return fs::read_symlink("/proc/self/exe").parent_path().string(); }

void perform(const Home& home, const std::string& script, const std::function<std::string()>& afterTick) {
    char name[] = "bench_program";
    char* words[] = {name, nullptr};
    int count = 1;
    shell::startQt(count, words, true);
    RehearsalOptions options;
    options.script = home.path(script);
    options.home = home.path(".");
    options.out = home.path("out");
    options.keepSound = false;
    CommandLine commandLine;
    commandLine.home = options.home;
    RehearsedProgram program;
    program.start = [&] {
        EnterProgramFolder(commandLine, executables());
        return Main(commandLine);
    };
    program.close = [] { shell::closeWindow(frmMain().window); };
    program.fault = afterTick;
    const int status = rehearse(options, program);
    shell::endQt();
    if (status != kRehearsalPassed) throw std::runtime_error("the show did not pass");
}

bool inProcessOfItsOwn(const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        int status = 1;
        try {
            work();
            status = 0;
        } catch (...) {
        }
        ::_exit(status);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status == 0;
}

void performAside(const Home& home, const std::string& script) {
    const std::string command = "'" + executables() + "/rehearse' '" + home.path(script) + "' --home '" +
                                home.path(".") + "' --out '" + home.path("out") + "' --no-sound 2>/dev/null";
    if (std::system(command.c_str()) != 0) throw std::runtime_error("the program did not start");
}

}  // namespace zv::bench
