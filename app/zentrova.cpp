/// The desktop program.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "app/start.h"
#include "platform/desktop.h"
#include "platform/jobs.h"
#include "platform/paths.h"
#include "platform/qt/view/shell.h"
#include "platform/wake.h"
#include "startup/command_line.h"

int main(int argc, char** argv) {
    using namespace zv;
    const CommandLine commandLine = ParseCommandLine(std::vector<std::string>(argv + 1, argv + argc));
    if (!commandLine.error.empty()) {
        std::fprintf(stderr, "%s\n", commandLine.error.c_str());
        return kUsageStatus;
    }
    if (commandLine.help) {
        std::printf("%s\n", UsageLine().c_str());
        return 0;
    }
    if (!screenAvailable()) {
        std::fprintf(stderr, "zentrova: no screen here; set DISPLAY, or perform a rehearsal instead\n");
        return 1;
    }
    shell::startQt(argc, argv, false);
    EnterProgramFolder(commandLine, ExecutableFolder(argv[0]));
    const bool started = Main(commandLine);
    if (started) onEndAsked(EndAsked);
    const int status = started ? runEventLoop() : 1;
    const bool quiet = endJobs(0);
    shell::endQt();
    // Skip static destruction while a worker hangs (a disk that does not answer): it may use those objects.
    if (!quiet) {
        std::fflush(nullptr);
        std::_Exit(status);
    }
    return status;
}
