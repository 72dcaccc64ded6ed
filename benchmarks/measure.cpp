#include "benchmarks/measure.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>

namespace zv::bench {
namespace {

bool shortOf = false;

double secondsOf(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void line(const std::string& name, double value, const std::string& unit, const char* limit, bool good) {
    std::printf("%s\t%.4g\t%s\t%s\t%s\n", name.c_str(), value, unit.c_str(), limit, good ? "ok" : "short");
    std::fflush(stdout);
    shortOf = shortOf || !good;
}

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

}  // namespace

double threadSeconds() { return secondsOf(CLOCK_THREAD_CPUTIME_ID); }
double processSeconds() { return secondsOf(CLOCK_PROCESS_CPUTIME_ID); }
double wallSeconds() { return secondsOf(CLOCK_MONOTONIC); }

double residentMegabytes() {
    std::ifstream status("/proc/self/statm");
    double pages = 0;
    status >> pages >> pages;
    return pages * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

void atMost(const std::string& name, double value, const std::string& unit, double limit) {
    line(name, value, unit, number(limit).c_str(), value <= limit);
}

void atLeast(const std::string& name, double value, const std::string& unit, double limit) {
    line(name, value, unit, number(limit).c_str(), value >= limit);
}

void tell(const std::string& name, double value, const std::string& unit) {
    line(name, value, unit, "-", true);
}

void missing(const std::string& name, const std::string& why) {
    std::fprintf(stderr, "%s: %s\n", name.c_str(), why.c_str());
    std::printf("%s\t-\t-\t-\tshort\n", name.c_str());
    shortOf = true;
}

bool anyShort() { return shortOf; }

std::vector<Benchmark>& benchmarks() {
    static std::vector<Benchmark> all;
    return all;
}

}  // namespace zv::bench

namespace {

constexpr int kGood = 0, kShort = 1, kUsage = 2, kUnknown = 3;

/// The program's measurements stand in an executable of their own; `bench` runs it after its own.
int runTheOther(const std::filesystem::path& self, const char* name) {
    const auto other = self.parent_path() / "bench_program";
    if (self.filename() != "bench" || !std::filesystem::exists(other)) return kUnknown;
    std::string command = "'" + other.string() + "'";
    if (name) command += " '" + std::string(name) + "'";
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : kShort;
}

}  // namespace

int main(int count, char** words) {
    using namespace zv::bench;
    const char* name = count == 2 ? words[1] : nullptr;
    if (count > 2 || (name && (name[0] == '-' || std::strchr(name, '\'')))) {
        std::fprintf(stderr, "usage: bench [NAME]\n");
        return kUsage;
    }
    bool found = false;
    for (const Benchmark& b : benchmarks()) {
        if (name && !std::strstr(b.name, name)) continue;
        found = true;
        try {
            b.run();
        } catch (const std::exception& fault) {
            missing(b.name, fault.what());
        }
    }
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    const int other = runTheOther(self, name);
    if (!found && other == kUnknown) {
        if (self.filename() == "bench")
            std::fprintf(stderr, "bench: no measurement is called \"%s\"\n", name ? name : "");
        return kUnknown;
    }
    return anyShort() || other == kShort ? kShort : kGood;
}
