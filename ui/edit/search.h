/// Finding a jingle by a part of its name: palettes that hold it, the hits of one, and the palette opened with
/// its hits blinking. [control]
#pragma once

#include <functional>
#include <string>

namespace zv {

extern bool SearchOpen;   ///< the window is open
extern bool ForPlaylist;  ///< it was opened by SearchForPlaylist

/// Opens the window; with it open, closes it.
void JingSearch();
/// Opens it for a playlist: the jingle that is chosen goes to `chosen`, by its slot and palette, and nothing is opened.
void SearchForPlaylist(std::function<void(int slot, const std::string& palette)> chosen);
void CloseSearchBox();
/// The palettes that hold the text.
void SearchJing();
/// The hits of the chosen palette, or, without the window for results, that palette opened.
void SelectPal();
/// The palette opened on the chosen hit: every button of that caption blinks.
void SelectJing();
/// Ends the blinking of hits.
void StopSearchBlinking();

void TimerFindJinglesTick();
void TimerSearchTick();
void TimerAutoClJSearchTick();
void TimerClearTick();

/// Fills the window's handlers.
void WireSearch();

}  // namespace zv
