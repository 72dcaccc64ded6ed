#include "startup/upcalls.h"

namespace zv {

StartupUpcalls startupUpcalls;

}  // namespace zv
