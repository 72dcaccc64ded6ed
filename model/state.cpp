#include "model/state.h"

#include <algorithm>

#include "platform/controls.h"
#include "startup/helpers.h"

namespace zv {

bool PalToSave = false;
std::string SaveMode;
std::string LastCtrl;
int MenuJ = 0;
std::vector<int> SelJ;
bool SelectorsOn = false;
int LastPlayedJ = -1;
int MoveSrcJ = -1;
int RenameJ = -1;
std::string ClipPath;
bool CtrlDown = false, ShiftDown = false, AltDown = false;
bool PlaylistsEnabled = false;
bool FxOpen = false;
bool LoadingUI = false;
bool Unloading = false;
std::uint8_t ToggleAutoRep = 0, ToggleTouch = 0;
bool MIDILearnActive = false;
double DispRemain = 0;
double DuckRemain = 0;
bool ClockShown = false;
int DispLoopIdx = 0;
std::vector<int> SearchHits;
std::int32_t BtnFaceColor = kButtonFace, BtnForeColor = 0;
std::int32_t JingleForeColor = 0;

bool IsSearchHit(int index) {
    return !SearchHits.empty() && std::find(SearchHits.begin(), SearchHits.end(), index) != SearchHits.end();
}

bool IsSoundExtension(std::string_view extension) {
    const std::string lower = LowerCase(extension);
    return std::any_of(FileExtensions.begin(), FileExtensions.end(), [&](std::string_view known) {
        if (known.back() == '*') return lower.compare(0, known.size() - 1, known, 0, known.size() - 1) == 0;
        return lower == known;
    });
}

std::string FileFilter() {
    std::string filter;
    for (const std::string_view extension : FileExtensions) {
        if (!filter.empty()) filter += ';';
        filter += "*.";
        filter += extension;
    }
    return filter;
}

}  // namespace zv
