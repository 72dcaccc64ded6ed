/// A small harness: what is measured, how it is told, and what counts as short.
#pragma once

#include <string>
#include <vector>

namespace zv::bench {

/// Seconds of processor time of the calling thread, of the whole process, and of the wall.
double threadSeconds();
double processSeconds();
double wallSeconds();

/// Of this process.
double residentMegabytes();

/// The middle one of `values`.
double median(std::vector<double> values);

/// One line: name, value, unit, limit, "ok" or "short", by tabs. A value beyond its limit is short.
void atMost(const std::string& name, double value, const std::string& unit, double limit);
void atLeast(const std::string& name, double value, const std::string& unit, double limit);
/// A number to look at, without a limit.
void tell(const std::string& name, double value, const std::string& unit);
/// What could not be measured, and why: short.
void missing(const std::string& name, const std::string& why);

/// Whether one line so far said "short".
bool anyShort();

/// What ./bench knows. Each file adds its own.
struct Benchmark {
    const char* name;
    void (*run)();
};
std::vector<Benchmark>& benchmarks();
struct Known {
    Known(const char* name, void (*run)()) { benchmarks().push_back({name, run}); }
};

}  // namespace zv::bench
