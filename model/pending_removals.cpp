#include "model/pending_removals.h"

#include <utility>

#include "model/upcalls.h"
#include "startup/helpers.h"
#include "startup/upcalls.h"

namespace zv {
namespace {

std::vector<Removal> removals;

template <class Which>
void drop(Which which) {
    if (std::erase_if(removals, which) > 0) callUp(modelUpcalls.removalsChanged);
}

}  // namespace

const std::vector<Removal>& PendingRemovals() { return removals; }

void AddRemoval(Removal removal) {
    removals.push_back(std::move(removal));
    callUp(modelUpcalls.removalsChanged);
}

void DropRemoval(const std::string& section, int slot) {
    drop([&](const Removal& r) { return r.slot == slot && SameText(r.section, section); });
}

void DropRemovalsInto(const std::string& into) {
    drop([&](const Removal& r) { return !r.into.empty() && SameText(r.into, into); });
}

void RenameInRemovals(const std::string& from, const std::string& to) {
    for (Removal& removal : removals) {
        if (SameText(removal.section, from)) removal.section = to;
        if (!removal.into.empty() && SameText(removal.into, from)) removal.into = to;
    }
    callUp(modelUpcalls.removalsChanged);
}

void ForgetRemovals() {
    drop([](const Removal&) { return true; });
}

}  // namespace zv
