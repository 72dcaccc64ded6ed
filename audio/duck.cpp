#include "audio/duck.h"

#include "model/jingle.h"
#include "model/state.h"

namespace zv {

void DuckTickBegin() { DuckRemain = 0; }

void DuckTickJingle(int index, double left) {
    if (Jingle(index).AutoDuck == 1) return;
    if (DuckRemain == 0 || DuckRemain > left) DuckRemain = left;
}

void DuckTickEnd() {}

}  // namespace zv
