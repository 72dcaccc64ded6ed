/// The search for a missing file: how far it is, then the files found (ui/edit/relocate.h fills and answers it). [control]
#pragma once

#include <functional>
#include <string>

#include "platform/controls.h"
#include "ui/windows/form_window.h"

namespace zv {

struct SelectFileWindow {
    FormWindow form{"frmSelFile", "sffrmSelFile"};
    Control& lblName = form.control("lblName", ControlKind::label);
    Control& lblFolder = form.control("lblFolder", ControlKind::label);
    Control& lblSeen = form.control("lblSeen", ControlKind::label);
    Control& barSearch = form.control("barSearch", ControlKind::progress);
    Control& lstFoundFiles = form.control("lstFoundFiles", ControlKind::listBox);
    Control& ckOthers = form.control("ckOthers", ControlKind::checkBox);
    Control& btSelect = form.control("sfbtSelect", ControlKind::button, "sfbtSelect");
    Control& btCancel = form.control("sfbtCancel", ControlKind::button, "sfbtCancel");

    std::function<void()> onSelect, onCancel;

    SelectFileWindow();
    /// Opens it for the search of `name`; nothing can be chosen yet.
    void showSearch(const std::string& name);
    void showFound(const std::vector<std::string>& files, std::size_t others);
};

SelectFileWindow& frmSelFile();

}  // namespace zv
