/// Keys and modifiers between the toolkit and the records. Internal to the shell. [any]
#pragma once

#include <QtCore/qnamespace.h>

#include "platform/controls.h"

class QKeyEvent;

namespace zv::shell {

Key keyOf(const QKeyEvent& event);
/// The toolkit's key for one of ours; letters and digits are the same.
int qtKeyOf(Key key);
int shiftOf(Qt::KeyboardModifiers modifiers);
Qt::KeyboardModifiers modifiersOf(int shift);
MouseButton buttonOf(Qt::MouseButton button);
Qt::MouseButton qtButtonOf(MouseButton button);

}  // namespace zv::shell
