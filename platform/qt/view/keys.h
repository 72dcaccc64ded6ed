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
/// True while the key is down in one of the program's windows; their relays tell.
bool isKeyDown(Key key);
MouseButton buttonOf(Qt::MouseButton button);
Qt::MouseButton qtButtonOf(MouseButton button);

}  // namespace zv::shell
