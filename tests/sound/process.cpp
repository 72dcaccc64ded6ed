#include "tests/sound/process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

namespace zv::test {

Process::Process(const std::vector<std::string>& arguments,
                 const std::vector<std::pair<std::string, std::string>>& environment,
                 const std::string& output) {
    std::vector<char*> words;
    for (const auto& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    pid_ = fork();
    if (pid_ != 0) return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int target = open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    dup2(target, STDOUT_FILENO);
    dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
    for (const auto& [name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
    execvp(words.front(), words.data());
    _exit(127);
}

bool Process::running() {
    if (pid_ <= 0) return false;
    if (waitpid(pid_, nullptr, WNOHANG) == 0) return true;
    pid_ = -1;
    return false;
}

void Process::signal(int number) const {
    if (pid_ > 0) kill(pid_, number);
}

void Process::end() {
    if (pid_ <= 0) return;
    kill(pid_, SIGTERM);
    kill(pid_, SIGCONT);
    for (int i = 0; i < 200 && running(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    if (pid_ <= 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

}  // namespace zv::test
