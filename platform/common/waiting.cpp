#include "platform/waiting.h"

#include <algorithm>
#include <vector>

#include "platform/controls.h"

namespace zv {

namespace {

std::vector<const Waiting*>& all() {
    static auto* waiting =
        new std::vector<const Waiting*>;  // windows in statics may end after any other static
    return *waiting;
}

}  // namespace

Waiting::Waiting(For w, const Control* of, std::function<void()> escape)
    : what(w), window(of), cancel(std::move(escape)) {
    all().push_back(this);
}

Waiting::~Waiting() { std::erase(all(), this); }

const Waiting* waitingNow() {
    if (all().empty()) return nullptr;
    const auto answer = std::find_if(all().rbegin(), all().rend(),
                                     [](const Waiting* w) { return w->what == Waiting::For::answer; });
    return answer != all().rend() ? *answer : all().back();
}

bool takesNow(const Control& control, const MouseEvent* press) {
    const Waiting* waiting = waitingNow();
    if (waiting == nullptr) return true;
    const Control& window = windowOf(control);
    const bool free =
        waiting->what == Waiting::For::answer ? &window == waiting->window : window.name != "frmMain";
    return free || (press != nullptr && worksMeanwhile && worksMeanwhile(control, *press));
}

}  // namespace zv
