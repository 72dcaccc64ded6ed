/// The display's mark for what waits, failed or is not saved. [control]
#pragma once

#include <string_view>

#include "startup/upcalls.h"

namespace zv {

/// What ErrDisp wants the mark to show.
void ShowErrorMark(const ErrorMark& mark);
/// The mark is there and shows this letter ("f" unsaved, "h" wait).
bool ErrMarkShows(std::string_view letter);
void HideErrMark();

}  // namespace zv
