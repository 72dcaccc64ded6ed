#include "ui/screen/captions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

#include "model/jingle.h"
#include "model/state.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/labels_settings.h"
#include "startup/text_codec.h"
#include "ui/records/jingle_buttons.h"

namespace zv {

namespace {

/// Values of JLabelFormat.
enum class LabelFormat : int {
    original = 0,
    lower,
    upper,
    upperInitials,
    upperInitialsRestLower,
    upperFirst,
    upperFirstRestLower,
};

constexpr std::size_t kShortestDrivePath = 8;  // characters of a path with a drive that can name a file

/// Upper or lower case of one code point: Latin, Greek and Cyrillic letters.
char32_t withCase(char32_t c, bool upper) {
    struct Block {
        char32_t first, last;  // lower case letters
        char32_t distance;     // to their upper case
    };
    static constexpr std::array<Block, 6> blocks{{{'a', 'z', 0x20},
                                                  {0xE0, 0xF6, 0x20},
                                                  {0xF8, 0xFE, 0x20},
                                                  {0x3B1, 0x3C9, 0x20},
                                                  {0x430, 0x44F, 0x20},
                                                  {0x450, 0x45F, 0x50}}};
    for (const Block& b : blocks) {
        if (upper && c >= b.first && c <= b.last) {
            return c - b.distance;
        }
        if (!upper && c >= b.first - b.distance && c <= b.last - b.distance) {
            return c + b.distance;
        }
    }
    // In these blocks upper and lower case stand side by side.
    const bool evenIsUpper = (c >= 0x100 && c <= 0x137) || (c >= 0x14A && c <= 0x177);
    const bool oddIsUpper = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
    if (evenIsUpper) {
        return upper ? c & ~char32_t{1} : c | 1;
    }
    if (oddIsUpper) {
        return upper ? (c % 2 == 0 ? c - 1 : c) : (c % 2 == 1 ? c + 1 : c);
    }
    return c;
}

void append(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

/// Case of a whole text; `firstOnly` changes its first letter and leaves the rest.
std::string recased(std::string_view text, bool upper, bool firstOnly = false) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        length = std::min(length, text.size() - i);
        if ((firstOnly && i > 0) || length > 2 || (length == 2 && lead < 0xC2)) {
            out.append(text.substr(i, length));  // nothing there that has a case
        } else {
            const char32_t c =
                length == 1 ? char32_t{lead}
                            : (char32_t{lead} & 0x1F) << 6 | (static_cast<unsigned char>(text[i + 1]) & 0x3F);
            append(out, withCase(c, upper));
        }
        i += length;
    }
    return out;
}

std::string replaced(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

/// A blank behind "(" makes what follows a word of its own while the words get their capitals.
std::string initials(const std::string& name, bool restLower) {
    std::string out;
    bool first = true;
    for (const std::string& word : Split(replaced(name, "(", "( "), " ")) {
        out += first ? "" : " ";
        first = false;
        out += recased(restLower ? recased(word, false) : word, true, true);
    }
    return replaced(out, "( ", "(");
}

std::string formatted(const std::string& name) {
    switch (static_cast<LabelFormat>(labelSettings.JLabelFormat)) {
        case LabelFormat::lower:
            return recased(name, false);
        case LabelFormat::upper:
            return recased(name, true);
        case LabelFormat::upperInitials:
            return initials(name, false);
        case LabelFormat::upperInitialsRestLower:
            return initials(name, true);
        case LabelFormat::upperFirst:
            return recased(name, true, true);
        case LabelFormat::upperFirstRestLower:
            return recased(recased(name, false), true, true);
        case LabelFormat::original:
            break;
    }
    return name;
}

constexpr int kSecondsPerMinute = 60;

}  // namespace

std::string btCaption(const std::string& path) {
    if (path.empty() || (path.find(':') != std::string::npos && characterCount(path) < kShortestDrivePath)) {
        return {};
    }
    std::string name = GetFileName(path);
    const std::string extension = GetFileExt(name);
    if (!extension.empty() && IsSoundExtension(extension)) {
        name.erase(name.size() - extension.size() - 1);
    }
    if (labelSettings.JU2Sp == 1) {
        name = replaced(name, "_", " ");
    }
    return formatted(name);
}

std::string MakeBJingName(const std::string& error, const std::string& path) {
    return btCaption(path) + "\r\n" + LnBox("ErrorHover") + "\r\n" + error;
}

std::string seconds2msd(double seconds) {
    const double tenths = std::floor(std::nearbyint((seconds + 0.05) * 100) / 100 * 10 + 1e-9) / 10;
    const int whole = static_cast<int>(tenths);
    const int minutes = whole / kSecondsPerMinute;
    const int tenth = static_cast<int>(std::lround(tenths * 10)) % 10;
    char text[48];
    if (minutes > 0) {
        std::snprintf(text, sizeof text, "%d:%02d.%d", minutes, whole - minutes * kSecondsPerMinute, tenth);
    } else {
        std::snprintf(text, sizeof text, "%d.%d", whole, tenth);
    }
    return text;
}

std::string seconds2msd(std::string_view value) {
    if (value.empty()) {
        return {};
    }
    return seconds2msd(ToNumber(value).value_or(0));
}

std::string ButtonText(int index) {
    const JingleRecord& j = Jingle(index);
    if (j.Path.empty()) {
        return {};
    }
    const std::string name = Ampersand(btCaption(j.Path));
    if (labelSettings.JDispDuration != 1 || j.MissingFile || j.hSrc == 0) {
        return name;
    }
    return JDurationPrefix() + seconds2msd(j.Duration) + JDurationSuffix() + "\r\n" + name;
}

void RewriteJingle() {
    guarded("frmMain.RewriteJingle", [] {
        for (const int i : LiveJingles()) {
            JingleButton* b = Button(i);
            if (b == nullptr) {
                continue;
            }
            const JingleRecord& j = Jingle(i);
            b->b_Jingle.caption = ButtonText(i);
            if (j.MissingFile && !j.Path.empty()) {
                b->b_Jingle.toolTip = MakeBJingName(BassErrMessage(j.BassErr), j.Path);
            }
        }
    });
}

}  // namespace zv
