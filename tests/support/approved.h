/// Texts that a person has read and found right, kept beside the tests. After a change that is meant, ZV_APPROVE=1
/// makes them anew; the difference is read before it is committed.
#pragma once

#include <string>

namespace zv::test {

/// The text is that of tests/`file`, to the letter; of a difference the first line is told.
void expectApproved(const std::string& file, const std::string& text);

}  // namespace zv::test
