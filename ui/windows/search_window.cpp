#include "ui/windows/search_window.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/text_codec.h"

namespace zv {

namespace {

constexpr int kWidth = 760;       // pixels
constexpr int kListHeight = 130;  // pixels
constexpr int kKeysInRow = 10;
constexpr int kKeyWidth = 64, kKeyHeight = 40;  // pixels: a finger finds them
constexpr int kNarrow = 48;                     // pixels: keys with an arrow

constexpr const char* kUp = "▲";
constexpr const char* kDown = "▼";
constexpr const char* kBack = "⌫";

/// The letters of a text, each as a text of its own.
std::vector<std::string> lettersOf(const std::string& text) {
    std::vector<std::string> letters;
    for (std::string_view rest = text; !rest.empty(); rest.remove_prefix(letters.back().size()))
        letters.emplace_back(firstCharacters(rest, 1));
    return letters;
}

}  // namespace

SearchWindow::SearchWindow() {
    for (int i = 0; i < kSearchKeys; ++i) {
        btKb[static_cast<std::size_t>(i)] = &form.control("btKb", ControlKind::button, {}, i);
    }
    for (Control* key : {&btKbUp, &btKbUpPal}) key->caption = kUp;
    for (Control* key : {&btKbDn, &btKbDnPal}) key->caption = kDown;
    btKbBack.caption = kBack;

    FormCard keyboard{.bare = true};
    for (int first = 0; first < kSearchKeys; first += kKeysInRow) {
        FormRow row{.height = kKeyHeight};
        for (int i = first; i < std::min(first + kKeysInRow, kSearchKeys); ++i) {
            row.cells.push_back({.control = btKb[static_cast<std::size_t>(i)], .width = kKeyWidth});
        }
        if (first + kKeysInRow >= kSearchKeys) {
            row.cells.push_back({.control = &btKbSp, .tip = "mSearchSpTip"});
            row.cells.push_back({.control = &btKbBack, .tip = "mSearchBackTip", .width = kKeyWidth});
        }
        keyboard.rows.push_back(std::move(row));
    }
    form.describe(
        {.blocks = {{{.rows = {{.cells = {{&txtJSearch, "mSearchTextTip", kRestOfRow}}},
                               {.cells = {{.control = &VUSearchDelay, .width = kRestOfRow}}, .height = 8}},
                      .bare = true}},
                    {{.title = "mSearchPal",
                      .rows = {{.cells = {{&lstPalRes, "mSearchPalTip", kRestOfRow}},
                                .height = kListHeight,
                                .grows = true},
                               {.cells = {{&btKbUpPal, "mSearchUpPalTip", kNarrow},
                                          {&btKbDnPal, "mSearchDnPalTip", kNarrow}}}}},
                     {.title = "mSearchHits",
                      .rows = {{.cells = {{&lstJingRes, "mSearchHitsTip", kRestOfRow}},
                                .height = kListHeight,
                                .grows = true},
                               {.cells = {{&btKbUp, "mSearchUpTip", kNarrow},
                                          {&btKbDn, "mSearchDnTip", kNarrow}}}}}},
                    {std::move(keyboard)}},
         .keysLeft = {{.control = &ShowHideKb, .tip = "mSearchKbTip"}},
         .keys = {{.control = &btKbEsc, .tip = "mSearchEscTip", .role = KeyRole::cancel},
                  {.control = &btKbGo, .tip = "mSearchGoTip", .role = KeyRole::accept}},
         .width = kWidth});
    showKeys(false);
}

void SearchWindow::fillKeys() {
    std::vector<std::string> letters;
    const auto add = [&](const std::string& row) {
        for (std::string& letter : lettersOf(row)) letters.push_back(std::move(letter));
        letters.resize((letters.size() + kKeysInRow - 1) / kKeysInRow *
                       kKeysInRow);  // the next row begins anew
    };
    for (const char* key : {"mKb1", "mKb2", "mKb3"}) add(Ln(key));
    letters.resize(kSearchKeys);
    for (std::size_t i = 0; i < btKb.size(); ++i) btKb[i]->caption = letters[i];
    showKeys(keysShown_);
}

void SearchWindow::showKeys(bool shown) {
    keysShown_ = shown;
    for (Control* key : btKb) key->visible = shown && !key->caption().empty();
    for (Control* key : {&btKbSp, &btKbBack}) key->visible = shown;
    form.refit();
}

SearchWindow& frmSearchJing() {
    static SearchWindow window;
    return window;
}

}  // namespace zv
