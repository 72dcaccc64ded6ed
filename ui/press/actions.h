/// What each Action does: the one place to add a command. [control]
#pragma once

namespace zv {

/// Makes perform() act on this window.
void FillActions();

}  // namespace zv
