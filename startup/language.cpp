#include "startup/language.h"

#include "platform/desktop.h"
#include "startup/helpers.h"
#include "startup/settings/program_settings.h"
#include "startup/stores.h"
#include "startup/upcalls.h"

namespace zv {
namespace {

constexpr const char* kProbe = "mb_tmAnJin";  // a language without it is unusable

}  // namespace

std::string Ln(std::string_view key) { return LanguageStore.GetValue(key, 0, programSettings.Language); }

std::string LnBox(std::string_view key) { return br2chr13(Ln(key)); }

BoxWords Verbs(std::string_view agree, std::string_view decline, bool destroys) {
    const std::string yes = Ln(agree), no = Ln(decline);
    return {yes, no, yes, no, destroys};
}

void LnStrings(std::string_view window) {
    LanguageStore.SetSection(programSettings.Language);
    if (LanguageStore.GetValue(kProbe).empty()) {
        programSettings.Language = kEnglish;
        LanguageStore.SetSection(kEnglish);
    }
    for (const LanguageKey& entry : LanguageKeys()) {
        if (!window.empty() && !SameText(window, entry.window)) continue;
        std::string text = LanguageStore.GetValue(entry.key);
        if (text.empty()) continue;
        text = br2chr13(text);
        if (entry.title) text += "  ";
        callUp(startupUpcalls.applyText, entry.window, entry.key, text);
    }
}

std::string LanguageChosenBySystem() { return systemIsFrench() ? kFrench : kEnglish; }

bool LanguageExists(const std::string& name) {
    LanguageStore.ListSections();
    for (int i = 0; i < LanguageStore.SectionCount(); ++i) {
        if (SameText(LanguageStore.SectionName(i), name)) return true;
    }
    return false;
}

}  // namespace zv
