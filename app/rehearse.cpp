/// A show from a script: the whole program without a screen, on a virtual clock.
///     rehearse SCENARIO --home FOLDER --out FOLDER [--seed N] [--no-sound] [--outputs 0|1|2]
///     [--answer WORD]... [--midi NAME]...

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "app/rehearsed_program.h"
#include "app/start.h"
#include "platform/controls.h"
#include "platform/paths.h"
#include "platform/qt/view/shell.h"
#include "platform/rehearsal/rehearsal.h"
#include "startup/command_line.h"
#include "ui/records/main_window.h"

namespace {

using namespace zv;

constexpr const char* kUsage =
    "usage: rehearse SCENARIO --home FOLDER --out FOLDER [--seed N] [--no-sound] "
    "[--outputs 0|1|2] [--answer WORD]... [--midi NAME]...";

/// False when the arguments are not as the usage says.
bool readArguments(const std::vector<std::string>& arguments, RehearsalOptions& options) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool takesValue = argument == "--home" || argument == "--out" || argument == "--seed" ||
                                argument == "--outputs" || argument == "--answer" || argument == "--midi";
        if (takesValue && i + 1 == arguments.size()) return false;
        if (argument == "--home") {
            options.home = arguments[++i];
        } else if (argument == "--out") {
            options.out = arguments[++i];
        } else if (argument == "--seed") {
            const std::string& text = arguments[++i];
            const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), options.seed);
            if (error != std::errc{} || end != text.data() + text.size()) return false;
        } else if (argument == "--outputs") {
            const std::string& text = arguments[++i];
            if (text != "0" && text != "1" && text != "2") return false;
            options.outputs = text[0] - '0';
        } else if (argument == "--answer") {
            options.answers.push_back(arguments[++i]);
        } else if (argument == "--midi") {
            options.midi.push_back(arguments[++i]);
        } else if (argument == "--no-sound") {
            options.keepSound = false;
        } else if (argument.starts_with("-") || !options.script.empty()) {
            return false;
        } else {
            options.script = argument;
        }
    }
    return !options.script.empty() && !options.home.empty() && !options.out.empty();
}

std::string absolutePath(const std::string& path) {
    return std::filesystem::absolute(path).lexically_normal().string();
}

}  // namespace

int main(int argc, char** argv) {
    RehearsalOptions options;
    if (!readArguments(std::vector<std::string>(argv + 1, argv + argc), options)) {
        std::fprintf(stderr, "%s\n", kUsage);
        return kRehearsalBad;
    }
    // The program changes into its folder while it starts.
    options.script = absolutePath(options.script);
    options.home = absolutePath(options.home);
    options.out = absolutePath(options.out);
    CommandLine commandLine;
    commandLine.home = options.home;
    const std::string shipped = ExecutableFolder(argv[0]);

    shell::startQt(argc, argv, true);
    RehearsedProgram program;
    program.start = [&] {
        EnterProgramFolder(commandLine, shipped);
        return Main(commandLine);
    };
    program.listen = listenToProgram;
    program.close = [] { shell::closeWindow(frmMain().window); };
    program.value = programValue;
    program.state = writeProgramState;
    program.fault = programFault;
    program.grid = changeGrid;
    const int status = rehearse(options, program);
    shell::endQt();
    return status;
}
