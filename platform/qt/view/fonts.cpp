#include <QFontDatabase>
#include <QFontInfo>

#include "platform/desktop.h"
#include "platform/qt/view/theme.h"

namespace zv {

using shell::textOf;
using shell::utf8;

bool registerFont(const std::string& file) { return QFontDatabase::addApplicationFont(textOf(file)) >= 0; }

bool fontInstalled(const std::string& family) { return QFontDatabase::hasFamily(textOf(family)); }

std::vector<std::string> installedFonts() {
    std::vector<std::string> out;
    for (const QString& family : QFontDatabase::families()) {
        if (!QFontDatabase::isPrivateFamily(family)) out.push_back(utf8(family));
    }
    return out;
}

}  // namespace zv
