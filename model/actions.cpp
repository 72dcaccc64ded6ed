#include "model/actions.h"

namespace zv {

std::function<bool(Action, int, int)> perform = [](Action, int, int) { return false; };

}  // namespace zv
