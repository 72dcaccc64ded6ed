/// Texts that a person has read and found right, kept beside the tests. After a change that is meant, ZV_APPROVE=1
/// makes them anew; the difference is read before it is committed.
#pragma once

#include <string>
#include <vector>

namespace zv::test {

/// Joined to lines of some length.
std::string paragraph(const std::vector<std::string>& parts, const std::string& between);

/// The text is that of tests/`file`, to the letter; of a difference the first line is told.
void expectApproved(const std::string& file, const std::string& text);

}  // namespace zv::test
