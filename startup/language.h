/// The texts that a user reads, by key, from language.ini in the language of the settings. [control]
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace zv {

struct BoxWords;

/// The text of `key` in the current language; empty when it is missing.
std::string Ln(std::string_view key);
/// The same with "<br>" turned into line ends, as a message box wants it.
std::string LnBox(std::string_view key);

/// Words for the keys of a question: what agreeing and declining do, by their language keys. `destroys`: agreeing
/// cannot be taken back.
BoxWords Verbs(std::string_view agree, std::string_view decline, bool destroys = false);

/// Applies the language to the controls of `window`, or of all windows when it is empty: each key that has a
/// text is handed to upcalls.applyText; a key without one leaves the control's own text. A language whose
/// section is unusable becomes English, in the settings too.
void LnStrings(std::string_view window = {});

/// One key that LnStrings applies.
struct LanguageKey {
    const char* window;  ///< "frmMain"
    const char* key;
    bool title;  ///< the caption of the window itself: two blanks are added
};
/// All of them, in the order in which they are applied.
std::span<const LanguageKey> LanguageKeys();

/// The language of a first start: "Français" on a French system, else "English".
std::string LanguageChosenBySystem();
/// True when language.ini has a section of that name.
bool LanguageExists(const std::string& name);

}  // namespace zv
