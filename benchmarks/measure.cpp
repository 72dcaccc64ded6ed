#include "benchmarks/measure.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <exception>

namespace zv::bench {
namespace {

bool anyShort = false;

double secondsOf(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void line(const std::string& name, double value, const std::string& unit, const char* limit, bool good) {
    std::printf("%s\t%.4g\t%s\t%s\t%s\n", name.c_str(), value, unit.c_str(), limit, good ? "ok" : "short");
    std::fflush(stdout);
    anyShort = anyShort || !good;
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

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

void atMost(const std::string& name, double value, const std::string& unit, double limit) {
    line(name, value, unit, number(limit).c_str(), value <= limit);
}

void atLeast(const std::string& name, double value, const std::string& unit, double limit) {
    line(name, value, unit, number(limit).c_str(), value >= limit);
}

void tell(const std::string& name, double value, const std::string& unit) { line(name, value, unit, "-", true); }

void missing(const std::string& name, const std::string& why) {
    std::fprintf(stderr, "%s: %s\n", name.c_str(), why.c_str());
    std::printf("%s\t-\t-\t-\tshort\n", name.c_str());
    anyShort = true;
}

std::vector<Benchmark>& benchmarks() {
    static std::vector<Benchmark> all;
    return all;
}

}  // namespace zv::bench

int main(int count, char** words) {
    using namespace zv::bench;
    if (count > 2 || (count == 2 && words[1][0] == '-')) {
        std::fprintf(stderr, "usage: bench [NAME]   (part of a name: %s", "");
        for (const Benchmark& b : benchmarks()) std::fprintf(stderr, " %s", b.name);
        std::fprintf(stderr, ")\n");
        return 2;
    }
    std::sort(benchmarks().begin(), benchmarks().end(),
              [](const Benchmark& a, const Benchmark& b) { return std::strcmp(a.name, b.name) < 0; });
    bool found = false;
    for (const Benchmark& b : benchmarks()) {
        if (count == 2 && !std::strstr(b.name, words[1])) continue;
        found = true;
        try {
            b.run();
        } catch (const std::exception& fault) {
            missing(b.name, fault.what());
        }
    }
    if (!found) std::fprintf(stderr, "bench: no measurement is called \"%s\"\n", words[1]);
    return found && !anyShort ? 0 : 1;
}
