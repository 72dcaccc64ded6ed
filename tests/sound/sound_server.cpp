#include "tests/sound/sound_server.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstring>
#include <fstream>

namespace zv::test {
namespace {

// Without norewinds recordings come back rendered anew, and the first client stalls.
std::string nullSink(const std::string& name, const std::string& description, int rate) {
    return "module-null-sink sink_name=" + name + " rate=" + std::to_string(rate) +
           " format=float32le norewinds=1 sink_properties=device.description=" + description;
}

}  // namespace

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

std::vector<std::pair<std::string, std::string>> SoundServer::environment() const {
    const std::string home = folder_.path().string();
    return {
        {"HOME", home}, {"XDG_RUNTIME_DIR", home}, {"PULSE_SERVER", address()}, {"PULSE_RUNTIME_PATH", home}};
}

void SoundServer::start() {
    server_ = Process(
        {"pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--disallow-exit", "--use-pid-file=no",
         "--load=module-native-protocol-unix auth-anonymous=1 socket=" + (folder_ / "native"),
         "--load=" + nullSink("out1", "OutOne", 44'100), "--load=" + nullSink("out2", "OutTwo", 44'100),
         "--load=" + nullSink("micfeed", "MicFeed", 44'100),
         "--load=module-remap-source master=micfeed.monitor source_name=mic1 "
         "source_properties=device.description=MicOne"},
        environment());
    within(5, [&] { return answers(); });
}

void SoundServer::freeze(bool frozen) const { server_.signal(frozen ? SIGSTOP : SIGCONT); }

int SoundServer::pactl(const std::string& arguments) const {
    return run("PULSE_SERVER=" + address() + " timeout 5 pactl " + arguments + " >/dev/null 2>&1");
}

bool SoundServer::answers() const { return pactl("info") == 0; }

void SoundServer::plugOutput(const std::string& name, const std::string& description, int rate) {
    pactl("load-module " + nullSink(name, description, rate));
}

void SoundServer::unplugOutput(const std::string& name) {
    run("PULSE_SERVER=" + address() + " sh -c 'pactl list short modules | grep sink_name=" + name +
        " | cut -f1 | xargs -r -n1 pactl unload-module'");
}

namespace {
/// The path of a file that is not there: a recording before must not be taken for the one that begins.
std::string emptied(std::string path) {
    std::filesystem::remove(path);
    return path;
}
}  // namespace

SoundServer::Recording::Recording(const SoundServer& server, const std::string& output)
    : file_(emptied(server.folder_ / (output + ".raw"))),
      recorder_({"parec", "-d", output + ".monitor", "--format=float32le", "--rate=44100", "--channels=2",
                 "--raw", "--latency-msec=10"},
                server.environment(), file_) {
    within(3, [&] { return frames() > 0; });
}

std::size_t SoundServer::Recording::frames() const {
    std::error_code none;
    const auto bytes = std::filesystem::file_size(file_, none);
    return none ? 0 : bytes / (2 * sizeof(float));
}

std::vector<float> SoundServer::Recording::stop() {
    recorder_.end();
    const auto bytes = readBytes(file_);
    std::vector<float> sound(bytes.size() / sizeof(float));
    std::memcpy(sound.data(), bytes.data(), sound.size() * sizeof(float));
    return sound;
}

Process SoundServer::feedMicrophone(const std::string& wav) const {
    return Process({"paplay", "-d", "micfeed", "--latency-msec=20", wav}, environment());
}

void Probe::render(std::span<float> stereo) {
    std::ranges::fill(stereo, level);
    longest = std::max(longest.load(), stereo.size() / 2);
    asked += stereo.size() / 2;
}

void Probe::heard(std::span<const float> stereo) {
    for (const float sample : stereo) loudest = std::max(loudest.load(), std::abs(sample));
    if (soundAt == 0 && loudest > 0.02F)
        soundAt = std::chrono::steady_clock::now().time_since_epoch().count();
    taken += stereo.size() / 2;
}

Process startJack(const Folder& home, int rate, int period) {
    const std::string name = "zv" + std::to_string(getpid());
    setenv("JACK_DEFAULT_SERVER", name.c_str(), 1);
    setenv("JACK_NO_START_SERVER", "1", 1);
    return Process({"jackd", "-n", name, "-r", "-d", "dummy", "-r", std::to_string(rate), "-p",
                    std::to_string(period), "-C", "2", "-P", "3"},
                   {{"HOME", home.path().string()}});
}

namespace {

class Clicker : public engine::SoundClient {
  public:
    void render(std::span<float> stereo) override {
        std::fill(stereo.begin(), stereo.end(), 0.0F);
        if (!armed.exchange(false)) return;
        std::fill(stereo.begin(), stereo.end(), 0.5F);
        sent = now();
    }
    void heard(std::span<const float> stereo) override {
        if (sent == 0 || received != 0) return;
        for (const float sample : stereo)
            if (sample > 0.1F) received = now();
    }
    void deviceLost() override {}
    void deviceBack() override {}

    std::atomic<bool> armed{false};
    std::atomic<std::int64_t> sent{0}, received{0};

  private:
    static std::int64_t now() {
        return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
    }
};

}  // namespace

std::vector<double> clickTravels(engine::DeviceSource& devices, const std::string& from,
                                 const std::string& to) {
    constexpr std::size_t clicks = 20;
    constexpr int mostLost = 5;  // of a busy machine
    Clicker clicker;
    const auto input = devices.openInput(to, 44'100, clicker);
    const auto output = devices.openOutput(from, 44'100, clicker);
    if (!input || !output) return {};
    std::vector<double> took;
    int lost = 0;
    for (int i = 0; took.size() < clicks; ++i) {
        // Long enough for the last one to have died away, and never in step with the server's periods.
        std::this_thread::sleep_for(std::chrono::microseconds(150'000 + 1'370 * i));
        clicker.received = clicker.sent = 0;
        clicker.armed = true;
        if (!within(2, [&] { return clicker.received != 0; })) {
            if (++lost > mostLost) return {};
            continue;
        }
        took.push_back(static_cast<double>(clicker.received - clicker.sent) / 1e6);
    }
    std::sort(took.begin(), took.end());
    return took;
}

}  // namespace zv::test
