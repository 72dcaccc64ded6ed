/// Ducking by the time left: what the display's tick gathers for it. [control]
#pragma once

namespace zv {

/// A tick begins: the smallest time left starts anew.
void DuckTickBegin();
/// A sounding jingle with `left` seconds; takes part unless it ducks itself.
void DuckTickJingle(int index, double left);
/// The tick has seen all jingles.
void DuckTickEnd();

}  // namespace zv
