/// How the tab of the time announcer shows what the announcer does. [control]
#pragma once

#include <string>

namespace zv {

/// b_tmAnJin waits for a button: a press on one makes it the time jingle.
extern bool ChoosingTimeJingle;

/// Captions, colours and fields from the announcer's state.
void ShowAnnouncer();
/// The key's text while the announcer is armed: caption of its file, its length, and the next moment below.
std::string TmAnnFormat();
/// The choice of the time jingle waits for a button: those that can serve take its colour. Nothing while another option
/// is armed, which ends the choice.
void HighlightTimeJingles();
/// No button is waited for any more.
void EndChoosing();

}  // namespace zv
