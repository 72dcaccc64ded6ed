/// Sizes of controls in a form, pixels at 100 %. Internal to the shell. [control]
#pragma once

#include <QWidget>

#include "platform/forms.h"

namespace zv::shell {

inline constexpr int kRowHeight = 30, kFootKey = 44;
inline constexpr int kFieldWidth = 200, kSwatch = 96;

/// Least and largest size of a control by its kind; in the foot without a row.
void sizeCell(const Control& record, QWidget& w, const FormCell& cell, const FormRow* row);

}  // namespace zv::shell
