#include "startup/settings/labels_settings.h"

namespace zv {

std::string JDurationPrefix() {
    const std::size_t at = labelSettings.JDispDurationEncap.find("duration");
    return at == std::string::npos ? std::string() : labelSettings.JDispDurationEncap.substr(0, at);
}

std::string JDurationSuffix() {
    constexpr std::string_view kWord = "duration";
    const std::size_t at = labelSettings.JDispDurationEncap.find(kWord);
    return at == std::string::npos ? std::string()
                                   : labelSettings.JDispDurationEncap.substr(at + kWord.size());
}

}  // namespace zv
