#include "model/after_sound.h"

#include <map>

namespace zv {
namespace {

std::map<int, PersistedJingle> waiting;

}  // namespace

void HoldAfterSound(int index, const PersistedJingle& content) {
    waiting[index] = content;
    Jingle(index).PlayingOtherPal = true;
}

const PersistedJingle* AfterSound(int index) {
    const auto found = waiting.find(index);
    return found == waiting.end() ? nullptr : &found->second;
}

void DropAfterSound(int index) { waiting.erase(index); }

void DropAfterSoundOfPalette() { waiting.erase(waiting.begin(), waiting.lower_bound(kPaletteSlots)); }

}  // namespace zv
