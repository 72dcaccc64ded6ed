/// What a web stream tells of the sound that is on air. [any]
#pragma once

#include <string>
#include <string_view>

namespace zv {

/// The title in "StreamTitle='...';StreamUrl='...';" as UTF-8, at most 200 characters, without control characters and
/// without blanks around it; empty when none is told. A title may hold quotation marks of the same kind.
std::string StreamTitle(std::string_view told);

}  // namespace zv
