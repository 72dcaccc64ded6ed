/// Jingles that were cut out of a palette that is not open any more and pasted elsewhere: their old slot is
/// emptied only when the save of the new one is on disk. [control]
#pragma once

#include <string>
#include <vector>

namespace zv {

struct Removal {
    std::string section;  ///< palette that loses the jingle
    int slot = -1;
    std::string into;  ///< palette that it was pasted into; empty: among the hot jingles
    std::string path;  ///< file that was cut; a slot that holds another by then keeps it
    bool operator==(const Removal&) const = default;
};

const std::vector<Removal>& PendingRemovals();
void AddRemoval(Removal removal);
/// The slot got a jingle again: nothing goes there any more.
void DropRemoval(const std::string& section, int slot);
/// Palette `into` is left without a save: what was pasted into it is gone, and stays where it was.
void DropRemovalsInto(const std::string& into);
/// A palette has another name from now on.
void RenameInRemovals(const std::string& from, const std::string& to);
void ForgetRemovals();

}  // namespace zv
