/// Damaged data that comes back with every message. [control]
#pragma once

#include <string>
#include <string_view>

namespace zv {

/// Reports an error under `procedure` the first time in a run; the same procedure's next ones only go to the log.
void ReportOnce(std::string_view procedure, int number, const std::string& description);

}  // namespace zv
