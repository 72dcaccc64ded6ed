/// A program that runs beside the test and ends with it.
#pragma once

#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

namespace zv::test {

class Process {
  public:
    Process() = default;
    /// Starts `arguments` with `environment` added to the test's own; what it writes goes to `output` (a
    /// file) or nowhere.
    Process(const std::vector<std::string>& arguments,
            const std::vector<std::pair<std::string, std::string>>& environment,
            const std::string& output = "/dev/null");
    Process(Process&& other) noexcept : pid_(std::exchange(other.pid_, -1)) {}
    Process& operator=(Process&& other) noexcept {
        std::swap(pid_, other.pid_);
        return *this;
    }
    ~Process() { end(); }

    bool running();
    /// Asks it to end, insists after two seconds.
    void end();
    void signal(int number) const;

  private:
    pid_t pid_ = -1;
};

}  // namespace zv::test
