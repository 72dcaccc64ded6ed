#include <QFontDatabase>
#include <QFontInfo>

#include "platform/desktop.h"
#include "platform/qt/view/theme.h"

namespace zv {

using shell::textOf;

bool registerFont(const std::string& file) { return QFontDatabase::addApplicationFont(textOf(file)) >= 0; }

bool fontInstalled(const std::string& family) { return QFontDatabase::hasFamily(textOf(family)); }

}  // namespace zv
