/// Every handler, timer tick and step of start-up, saving and loading runs guarded: what it throws is
/// reported under the procedure's name and the show goes on.
///
///     void b_Jingle_MouseDown(int i) {
///         guarded("frmMain.b_Jingle_MouseDown", [&] { ... });
///     }
#pragma once

#include <string_view>
#include <utility>

namespace zv {

/// Reports the exception being handled under `procedure`. Call it in a catch block only. [control]
void reportCaught(std::string_view procedure) noexcept;

/// Runs `body`; true when it went well. Costs nothing when it does. [control]
template <class Body>
bool guarded(std::string_view procedure, Body&& body) noexcept {
    try {
        std::forward<Body>(body)();
        return true;
    } catch (...) {
        reportCaught(procedure);
        return false;
    }
}

/// As guarded, for a body with a result: `otherwise` is given back when it fails.
template <class Result, class Body>
Result guardedOr(std::string_view procedure, Result otherwise, Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        reportCaught(procedure);
        return otherwise;
    }
}

}  // namespace zv
