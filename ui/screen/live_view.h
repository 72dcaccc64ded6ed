/// How the tab of the live stream shows what the stream does. [control]
#pragma once

#include <string>

namespace zv {

/// Captions, colours and the status line from the stream's state.
void ShowLive();
/// The list: the addresses of urls.txt and, in the mix topology, the inputs below them.
void ListPlayStreams();
/// The keys that fit what is chosen.
void EnableStreamsButtons();
/// Shows why the stream could not be had, in its list and in the status line.
void ShowStreamError(const std::string& text);
/// What is chosen or typed in the list; behind an error text the source that failed.
std::string ChosenSource();

}  // namespace zv
