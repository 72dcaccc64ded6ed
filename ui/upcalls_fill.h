/// Fills the tables through which the lower rooms tell this one something. [control]
#pragma once

namespace zv {

/// Called once before anything below shows or asks.
void FillUpcalls();

}  // namespace zv
