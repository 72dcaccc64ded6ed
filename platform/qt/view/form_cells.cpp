#include "platform/qt/view/form_cells.h"

#include <QFontMetrics>
#include <algorithm>

#include "platform/qt/view/theme.h"

namespace zv::shell {
namespace {

constexpr int kFootKeyWidth = 120;
constexpr int kSliderWidth = 160, kSliderMost = 320, kSliderLeast = 48, kListHeight = 120;
constexpr int kBarHeight = 10;

int textWidth(const Control& record) {
    int widest = 0;
    const QFontMetrics m(fontOf(record, 13, QFont::Medium));
    for (const std::string& item : record.items())
        widest = std::max(widest, m.horizontalAdvance(textOf(item)));
    return widest;
}

}  // namespace

void sizeCell(const Control& record, QWidget& w, const FormCell& cell, const FormRow* row) {
    const int high = row != nullptr && row->height > 0 ? row->height : kRowHeight;
    const bool rest = cell.width == kRestOfRow;
    switch (record.kind) {
        case ControlKind::button:
        case ControlKind::toggle:
            // In a row of a finger's height a key fills it.
            w.setFixedHeight(row == nullptr      ? kFootKey
                             : high < kManyLines ? std::max(high, kRowHeight)
                                                 : kRowHeight);
            w.setMinimumWidth(row == nullptr ? kFootKeyWidth : 0);
            break;
        case ControlKind::textBox:
            if (high >= kManyLines) {
                w.setMinimumHeight(high);
            } else {
                w.setFixedHeight(kRowHeight);
            }
            w.setMinimumWidth(rest ? kSwatch : kFieldWidth);
            break;
        case ControlKind::comboBox:
            if (record.segmented) break;
            w.setFixedHeight(kRowHeight);
            w.setMinimumWidth(std::clamp(textWidth(record) + 44, rest ? kSwatch : kSliderWidth, kSliderMost));
            break;
        case ControlKind::slider:
            w.setFixedHeight(std::min(high, kRowHeight));
            w.setMinimumWidth(rest ? kSliderLeast : kSliderWidth);
            if (!rest) w.setMaximumWidth(kSliderMost);
            break;
        case ControlKind::listBox:
            w.setMinimumSize(kSwatch, row != nullptr && row->height > 0 ? row->height : kListHeight);
            break;
        case ControlKind::canvas:
            w.setMinimumSize(kSwatch, high);
            break;
        case ControlKind::progress:
            w.setFixedHeight(kBarHeight);
            break;
        case ControlKind::meter:
            if (record.meterLook().vertical) {
                w.setFixedWidth(kBarHeight);
                w.setMinimumHeight(high);
            } else {
                w.setFixedHeight(kBarHeight);
                w.setMinimumWidth(rest ? kSwatch : kSliderWidth);
            }
            break;
        case ControlKind::colourField:
            w.setFixedSize(cell.width > 0 ? cell.width : kSwatch, high);
            break;
        case ControlKind::checkBox:
        case ControlKind::option:
            w.setFixedHeight(kRowHeight);
            break;
        default:
            break;
    }
    if (cell.width <= 0 || record.kind == ControlKind::colourField) return;
    w.setFixedWidth(cell.width);
    if (record.kind == ControlKind::label && row != nullptr) w.setFixedHeight(high);  // a chip fills its row
}

}  // namespace zv::shell
