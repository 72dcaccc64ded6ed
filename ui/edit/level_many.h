/// Several jingles brought to the same loudness. [control]
#pragma once

#include <string>
#include <vector>

namespace zv {

/// What the menu says of it, with the loudness of the settings.
std::string LoudnessItem();
/// Measures the parts that play of these slots on a worker and then sets their volumes so that all meet LoudnessTarget,
/// never above what is safe; one edit. Slots without a sound are left out. frmLoudness shows how far it is and ends it.
void BringToLoudness(const std::vector<int>& slots);

}  // namespace zv
