/// The toolkit's own widgets behind records, and events made for them: what the parts of the shell ask of
/// each other. Internal to the shell. [control]
#pragma once

#include <QPoint>
#include <QString>
#include <string_view>

class QWidget;

namespace zv::shell {

class RecordView;

/// Scrolls a list so that the row stands in its middle.
void centreRow(RecordView& list, int row);
int visibleRows(const RecordView& list);
/// The user's ways to work a field, through its widget; false when it is not of that kind.
bool userSelectsRow(RecordView& view, int row);
bool userMovesSlider(RecordView& view, int value);
bool userTypes(RecordView& view, std::string_view text);
bool userChooses(RecordView& view, int row);
bool userTypesNumber(RecordView& view, const QString& text);

/// Events as a mouse and a keyboard send them, by the window's door.
bool clickAt(QWidget& widget, QPoint at);
void typeInto(QWidget& focused, const QString& text);

}  // namespace zv::shell
