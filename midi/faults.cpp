#include "midi/faults.h"

#include <set>

#include "startup/errors.h"

namespace zv {

void ReportOnce(std::string_view procedure, int number, const std::string& description) {
    static std::set<std::string, std::less<>> reported;
    if (reported.emplace(procedure).second)
        ErrorReport(procedure, number, description);
    else
        ErrLog(procedure, description);
}

}  // namespace zv
