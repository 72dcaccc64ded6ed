#include "ui/records/soon.h"

#include <deque>
#include <utility>

#include "startup/guard.h"
#include "ui/records/timers.h"

namespace zv {

namespace {

constexpr int kSoonMs = 10;

struct Task {
    const char* procedure;
    std::function<void()> run;
};
std::deque<Task> tasks;

UiTimer& timerSoon() {
    static UiTimer timer("TimerSoon", kSoonMs);
    return timer;
}

void next() {
    if (tasks.empty()) {
        timerSoon().stop();
        return;
    }
    // The task may wait for an answer: the timer runs on for those behind it.
    const Task task = std::move(tasks.front());
    tasks.pop_front();
    guarded(task.procedure, task.run);
}

}  // namespace

void Soon(const char* procedure, std::function<void()> task) {
    tasks.push_back({procedure, std::move(task)});
    timerSoon().handler = next;
    timerSoon().restart();
}

}  // namespace zv
