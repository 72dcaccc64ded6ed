/// Finding a lost sound file again. [control]
#pragma once

namespace zv {

/// Looks for the file of a button below a folder that the user names.
void clReloc(int index);

}  // namespace zv
