/// Small routines on paths, files, texts and colours, used everywhere. Paths are of both kinds: relative ones
/// and those with a drive use backslashes, those that start with "/" slashes. Texts are UTF-8. [control]
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zv {

class Control;

// ---- paths (no file is touched) ----
/// The path with a trailing separator of its own kind, added only if missing.
std::string RPP(std::string_view path);
/// The part up to and including the last separator; empty without one.
std::string GetPath(std::string_view path);
/// The part behind the last separator, the whole text without one.
std::string GetFileName(std::string_view path);
std::string NameOnly(std::string_view path);
/// The text behind the last point of the file name, or empty.
std::string GetFileExt(std::string_view name);
std::string GetExtension(std::string_view name);
/// The path as it is when it is absolute, else program folder + separator + path.
std::string GetFullPath(std::string_view path);
/// The path without the program folder and its separator if it begins with it (without regard to case), with
/// backslashes; otherwise as it is.
std::string GetRelPath(std::string_view path);

// ---- files and folders ----
/// True when the file can be opened for reading.
bool FileExists(std::string_view path);
bool FolderExists(std::string_view path);
/// Makes each missing folder along the path. False when one cannot be made; a path of another system's kind
/// never can.
bool MkDirs(std::string_view path);
/// All files below a folder, full paths, in the order of their names.
struct FolderList {
    int count = 0;
    std::string text;  ///< the paths, each followed by CR LF
};
/// `first` resets `list`; otherwise the walk is added to it. Links to folders are not followed.
void ListFolder(std::string_view path, bool first, FolderList& list);
/// Removes the empty folders below `path`, not `path` itself.
void ClearEmptySubFolder(std::string_view path);
/// Size in bytes, -1 when it is not there.
std::int64_t FileLength(std::string_view path);

// ---- texts ----
std::string Ampersand(std::string_view text);         ///< doubles "&"
std::string br2chr13(std::string_view text);          ///< "<br>" to CR LF
std::string br2space(std::string_view text);          ///< "<br>" to a blank
std::string ReturnNumbers(std::string_view text);     ///< only the digits
std::string ReturnNonNumbers(std::string_view text);  ///< all but the digits
std::string SansAccents(std::string_view text);       ///< the accented Latin letters to their plain ones
std::string NoAccents(std::string_view text);         ///< the same
/// `def` when the text is empty or blank, else the text.
std::string CannotBeEmpty(std::string_view text, std::string_view def = "0");
std::string Trim(std::string_view text);                ///< blanks and tabs at both ends go
std::string LowerCase(std::string_view text);           ///< ASCII and the Latin letters
bool SameText(std::string_view a, std::string_view b);  ///< without regard to case
std::vector<std::string> Split(std::string_view text, std::string_view separator);
/// Sorts without regard to case and accents; of equals the plain text decides. `high` 0: all of it.
void QuickSort(std::vector<std::string>& texts, std::size_t low = 0, std::size_t high = 0);
/// "1.50 KB"; the unit names come from the language's "SizeUnits".
std::string BytesToUnits(double size, int decimals);
/// A legal file name out of any text. `replacement` stands for each character that is not allowed (empty: it
/// is dropped); one that is not allowed itself throws error 2069. `shortName`: 8.3.
std::string ValidFileName(std::string_view name, std::string_view replacement = {}, bool shortName = false);

// ---- numbers ----
int GetMultipleOf(int n, int m);  ///< n rounded down to a multiple of m; n itself when m is 0
/// The number that a whole text is, with blanks around it; nothing when it is none. A decimal comma counts as
/// point.
std::optional<double> ToNumber(std::string_view text);
/// The leading number of a text, 0 without one.
double Val(std::string_view text);
/// Plain decimal text: whole numbers without a point, others as short as they read back the same.
std::string NumberText(double value);
/// The key of a typed character, 0 when it is not part of a number (digits, sign, point) or not a digit.
int KeepNumeric(int keyAscii);
int KeepDigit(int keyAscii);

// ---- colours (0xBBGGRR) ----
std::string ColorToHex(std::int32_t colour);   ///< "RRGGBB"
std::string Hex2Digits(int n);                 ///< two upper-case digits, 0 to 255
std::int32_t HexToRGB(std::string_view text);  ///< "RRGGBB" to 0xBBGGRR; 0 for anything else
struct RGBParts {
    int red, green, blue;
};
RGBParts LongToRGB(std::int32_t colour);

// ---- the desktop ----
void SetTopMostWindow(Control& window, bool on);
void SetProcessPriority(int priorityClass);
/// Selects the first entry of a list that equals `text`; nothing changes without one.
void SelectListItem(Control& list, const std::string& text);
/// Selects the whole text of a text box.
void SelectAllText(Control& textBox);
void OpenDocument(const std::string& path);

}  // namespace zv
