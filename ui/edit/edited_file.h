/// The file of the edited jingle: it may vanish, be replaced or become shorter while the window is open. [control]
#pragma once

#include <string>

namespace zv {

/// Notes how the file is now.
void OpenFileWatch();
/// Asks once a second how it is, and brings the positions into what is left.
void FollowFile();
/// What has become of it, in the user's words; empty while it is as it was.
const std::string& FileNote();
/// True when there is another file now than when the window opened.
bool EditedFileReplaced();
void CloseFileWatch();

}  // namespace zv
