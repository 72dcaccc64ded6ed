/// Where the build lies, for tests that read shipped files or start programs.
#pragma once

#include <string>

namespace zv::test {

/// The folder of the sources, without a separator at its end.
std::string sourceDir();

/// The folder of the executables and libraries, without a separator at its end.
std::string binDir();

}  // namespace zv::test
