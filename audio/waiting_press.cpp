#include "audio/waiting_press.h"

#include <map>

namespace zv {
namespace {

std::map<int, int> waiting;  // velocities by slot

}  // namespace

void KeepWaitingPress(int index, int velocity) { waiting.try_emplace(index, velocity); }

std::optional<int> TakeWaitingPress(int index) {
    const auto found = waiting.find(index);
    if (found == waiting.end()) return std::nullopt;
    const int velocity = found->second;
    waiting.erase(found);
    return velocity;
}

void DropWaitingPresses() { waiting.clear(); }

}  // namespace zv
