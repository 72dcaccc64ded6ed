#include "model/held_palette.h"

#include "model/upcalls.h"
#include "startup/upcalls.h"

namespace zv {
namespace {

std::string held, coming;
bool loading = false;
int newest = 0;

}  // namespace

const std::string& HeldPalette() { return held; }

const std::string& ComingPalette() { return loading ? coming : held; }

bool PaletteLoading() { return loading; }

int BeginPaletteLoad(const std::string& name) {
    if (!loading) callUp(modelUpcalls.paletteLeaves);
    loading = true;
    coming = name;
    return ++newest;
}

bool IsNewestLoad(int load) { return load == newest; }

void EndPaletteLoad(int load, const std::string& name) {
    if (IsNewestLoad(load)) HoldPalette(name);
}

void HoldPalette(const std::string& name) {
    ++newest;
    loading = false;
    held = name;
}

}  // namespace zv
