#include "ui/windows/select_file_window.h"

#include <vector>

#include "startup/guard.h"
#include "startup/language.h"

namespace zv {

namespace {

constexpr int kWidth = 640, kListHeight = 150, kBarHeight = 10;  // pixels

}  // namespace

SelectFileWindow::SelectFileWindow() {
    form.describe({.header = {.title = lblName, .line = lblFolder},
                   .blocks = {{{.rows = {{.cells = {{&barSearch, {}, kRestOfRow}}, .height = kBarHeight},
                                         {.cells = {{&lblSeen, {}, kRestOfRow}}},
                                         {.cells = {{&lstFoundFiles, "sfListTip", kRestOfRow}},
                                          .height = kListHeight,
                                          .grows = true},
                                         {.cells = {{&ckOthers, "sfOthersTip", kRestOfRow}}}}}}},
                   .keys = {{.control = &btCancel, .role = KeyRole::cancel},
                            {.control = &btSelect, .role = KeyRole::accept}},
                   .width = kWidth});
    const auto choose = [this] {
        guarded("frmSelFile.btSelect_Click", [this] {
            if (onSelect && btSelect.enabled) onSelect();
        });
    };
    btSelect.onClick = choose;
    lstFoundFiles.onDoubleClick = [choose](const MouseEvent&) { choose(); };
    lstFoundFiles.onChange = [this] { btSelect.enabled = lstFoundFiles.listIndex() >= 0; };
    const auto giveUp = [this] {
        guarded("frmSelFile.btCancel_Click", [this] {
            if (onCancel) onCancel();
        });
    };
    btCancel.onClick = giveUp;
    form.onClosed = giveUp;
}

void SelectFileWindow::showSearch(const std::string& name) {
    lblName.caption = name;
    lblFolder.caption = std::string();
    lblSeen.caption = std::string();
    barSearch.value = 0;
    barSearch.visible = true;
    lstFoundFiles.items = {};
    lstFoundFiles.listIndex = -1;
    lstFoundFiles.enabled = false;
    ckOthers.visible = false;
    btSelect.enabled = false;
    form.open(&btCancel);
}

void SelectFileWindow::showFound(const std::vector<std::string>& files, std::size_t others) {
    barSearch.visible = false;
    lstFoundFiles.enabled = true;
    lstFoundFiles.items = files;
    lstFoundFiles.listIndex = files.size() == 1 ? 0 : -1;
    btSelect.enabled = files.size() == 1;
    std::string text = Ln("sfOthers");
    if (const auto at = text.find("%1"); at != std::string::npos) text.replace(at, 2, std::to_string(others));
    ckOthers.caption = text;
    ckOthers.visible = others > 0;
    ckOthers.value = others > 0 ? 1 : 0;
    form.refit();
    form.open(files.size() == 1 ? &btSelect : &lstFoundFiles);
}

SelectFileWindow& frmSelFile() {
    static SelectFileWindow window;
    return window;
}

}  // namespace zv
