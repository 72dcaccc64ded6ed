// The texts: applied in their order, in the language there is; and the shipped file has every key in every
// language.

#include <fstream>
#include <iterator>

#include "startup/language.h"
#include "startup/settings/program_settings.h"
#include "tests/startup/surroundings.h"
#include "tests/support/places.h"

namespace zv::test {
namespace {

class Language : public ProgramFolderTest {
  protected:
    void SetUp() override {
        ProgramFolderTest::SetUp();
        startupUpcalls.applyText = [this](const std::string& window, const std::string& key,
                                          const std::string& text) {
            applied.push_back(window + "." + key + "=" + text);
        };
    }
    std::vector<std::string> applied;
};

TEST_F(Language, TextsGoToTheirControlsInOrder) {
    write("language.ini",
          "[English]\nmbtSave=Save\nmb_tmAnJin=Jingle\nfxForm=Editor\nmckAssign=As<br>sign\nmbtNew="
          "EntryNotFoundFlag\n"
          "[Deutsch]\nmbtSave=Speichern\n");
    programSettings.Language = kEnglish;
    LnStrings();
    EXPECT_THAT(applied, ElementsAre("frmMain.mb_tmAnJin=Jingle", "frmFX.fxForm=Editor  ",
                                     "frmMain.mckAssign=As\r\nsign", "frmMain.mbtSave=Save"));
    applied.clear();
    programSettings.Language = "Deutsch";  // without the key that every language has
    LnStrings("frmfx");
    EXPECT_THAT(applied, ElementsAre("frmFX.fxForm=Editor  "));
    EXPECT_EQ(programSettings.Language, kEnglish);
    EXPECT_EQ(Ln("mbtSave"), "Save");
    EXPECT_EQ(Ln("mbtNew"), "");
    EXPECT_EQ(LnBox("mckAssign"), "As\r\nsign");
}

std::string contentsOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Every key that the sources ask for by name, but for the tests.
std::set<std::string> keysInTheCode() {
    std::set<std::string> keys;
    for (const char* room :
         {"app", "ui", "audio", "model", "midi", "backup", "online", "startup", "platform"}) {
        const fs::path folder = fs::path(test::sourceDir()) / room;
        if (!fs::exists(folder)) continue;
        for (const auto& entry : fs::recursive_directory_iterator(folder)) {
            const std::string extension = entry.path().extension().string();
            if (extension != ".cpp" && extension != ".h") continue;
            const std::string text = contentsOf(entry.path());
            for (const std::string_view call : {"Ln(", "LnBox("})
                for (std::size_t at = 0; (at = text.find(call, at)) != std::string::npos;) {
                    const bool whole = at > 0 && std::isalnum(static_cast<unsigned char>(text[at - 1])) == 0;
                    const std::size_t key = text.find_first_not_of(" \n", at += call.size());
                    if (!whole || text[key] != '"') continue;
                    const std::size_t end = text.find('"', key + 1);
                    if (std::string_view("),}").find(text[end + 1]) != std::string_view::npos)
                        keys.insert(text.substr(key + 1, end - key - 1));
                }
        }
    }
    return keys;
}

TEST_F(Language, ShippedFileHasEveryKeyInEveryLanguage) {
    const fs::path original = fs::path(test::sourceDir()) / "data/language_original.ini";
    ASSERT_TRUE(fs::exists(original));
    EXPECT_GE(fs::file_size(original), static_cast<std::uintmax_t>(kSmallestLanguageFile));
    cImpulse store;
    store.SetIniPath(original.string());
    std::set<std::string> wanted = keysInTheCode();
    EXPECT_GE(wanted.size(), 10U) << "the search for keys finds nothing any more";
    for (const LanguageKey& key : LanguageKeys()) wanted.insert(key.key);
    for (const char* key : {"SizeUnits", "mDlgType", "ErrorStop", "mStrEr"}) wanted.insert(key);
    for (const int code : {20, 2, 32, 40, 41, 5, 6, 1, 21, -1})
        wanted.insert("mStrEr" + std::to_string(code));
    const std::string codes = contentsOf(fs::path(test::sourceDir()) / "startup/errors.cpp");
    for (std::size_t at = 0; (at = codes.find("\"BASS_ERROR_", at)) != std::string::npos; ++at)
        wanted.insert(codes.substr(at + 1, codes.find('"', at + 1) - at - 1));
    store.ListSections();
    ASSERT_GE(store.SectionCount(), 4);
    for (int i = 0; i < store.SectionCount(); ++i) {
        const std::string language = store.SectionName(i);
        std::vector<std::string> missing;
        for (const std::string& key : wanted) {
            if (store.GetValue(key, 0, language).empty()) missing.push_back(key);
        }
        EXPECT_THAT(missing, IsEmpty()) << language;
        // What one language has, all have.
        for (const auto& [key, text] : store.GetSectionLines(store.SectionName(0))) {
            EXPECT_FALSE(store.GetValue(key, 0, language).empty()) << language << " " << key;
            const auto pieces = [](const std::string& t) { return Split(t, ",").size(); };
            const bool list =
                key == "mDayNames" || key == "mMonthNames" || key == "mMonthNamesShort" || key == "SizeUnits";
            EXPECT_TRUE(!list || pieces(store.GetValue(key, 0, language)) == pieces(text))
                << language << " " << key;
        }
    }
}

}  // namespace
}  // namespace zv::test
