/// The whole program in a folder of its own, on the virtual clock and without a screen.
#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

namespace zv::bench {

/// A program folder; gone afterwards.
class Home {
  public:
    explicit Home(const std::string& name);
    ~Home();
    Home(const Home&) = delete;
    Home& operator=(const Home&) = delete;

    std::string path(const std::string& name) const { return (folder_ / name).string(); }
    std::ofstream file(const std::string& name) const { return std::ofstream(path(name), std::ios::binary); }

  private:
    std::filesystem::path folder_;
};

/// Folder of the executables, where what ships lies too.
std::string executables();

/// Performs `script`, a file of that folder, in this process, which can do so once. `afterTick` runs behind
/// each tick of the display; what it returns fails the show. Throws when it did not pass.
void perform(const Home& home, const std::string& script, const std::function<std::string()>& afterTick);

/// Runs `work` in a copy of this process; false when it threw there.
bool inProcessOfItsOwn(const std::function<void()>& work);

/// Performs `script` in a process of its own.
void performAside(const Home& home, const std::string& script);

}  // namespace zv::bench
