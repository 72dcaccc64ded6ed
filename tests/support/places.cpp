#include "tests/support/places.h"

namespace zv::test {

std::string sourceDir() { return ZV_SOURCE_DIR; }

std::string binDir() { return ZV_BIN_DIR; }

}  // namespace zv::test
