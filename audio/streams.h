/// From a slot's keys to live channels. [control]
#pragma once

#include <string>

namespace zv {

class SlotKeys;
struct PersistedJingle;

/// Reads the persisted fields of slot `index` from `section` of the palette file, or of the hot jingles' when
/// `isHot` (numbers less 96). A slot that still sounds keeps its record and is marked PlayingOtherPal. A slot
/// without a usable path becomes empty. Nothing when the button does not exist.
void openNames(int index, const std::string& section, bool isHot);
/// The same from other lines than the files'.
void openNames(int index, const SlotKeys& keys);
/// A playlist instead of a sound: its section in playlist.ini, and the slot's colour as palettes keep it.
void BindSlot(int index, const std::string& playlist, const std::string& btnCol);
/// Another content for a slot that is silent; its file is opened.
void FillSlot(int index, const PersistedJingle& content);
/// Opens the channels of a slot and works out what depends on the file: a worker asks the disk, and the slot is
/// filled when it has answered. A file that cannot be opened shows on its button and disturbs nothing else.
void openStreams(int index);
/// The disk has not answered yet for the slot's file.
bool SlotOpening(int index);
/// The slot's file is opened before those of other slots.
void HurrySlot(int index);
/// Where the slot begins: CueStart, or 0 for one that does not lie before the end of its sound. Bytes.
double StartPosition(int index);
/// Its start position counts as 0 for that reason.
bool StartIgnored(int index);
/// Bytes cut from the end of the playable range.
double EndOffsetCalc(int index);
/// Playable seconds, never below 0.
double JDurationCalc(int index);

/// Frees both channels of a slot and zeroes the handles.
void FreeJingle(int index);
/// The record becomes the empty one (its channels must be free).
void ClearRecord(int index);

}  // namespace zv
