#include "audio/url_list.h"

#include <algorithm>
#include <utility>

#include "platform/files.h"
#include "platform/paths.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/stores.h"
#include "startup/text_codec.h"

namespace zv {

namespace {

std::string LastUrl;  // not added twice in a row

bool beginsWith(std::string_view text, std::string_view scheme) {
    return SameText(text.substr(0, scheme.size()), scheme);
}

/// What an address is sorted by.
std::string withoutScheme(const std::string& url) {
    std::string rest = url;
    for (const std::string_view scheme : {"http://", "https://"})
        if (beginsWith(rest, scheme)) {
            rest.erase(0, scheme.size());
            break;
        }
    foldCase(rest);
    return rest;
}

/// Bytes of the file, and the encoding in which they go back.
std::string fileBytes(Encoding& encoding) {
    std::string bytes;
    readFile(nativePath(UrlsFile), bytes);
    encoding = encodingOf(bytes);
    return bytes;
}

std::vector<std::string> linesOf(const std::string& bytes) {
    std::vector<std::string> lines;
    for (const std::string& line : Split(textOf(bytes), "\n")) {
        std::string text =
            Trim(line.ends_with('\r') ? std::string_view(line).substr(0, line.size() - 1) : line);
        if (!text.empty() && std::find(lines.begin(), lines.end(), text) == lines.end())
            lines.push_back(std::move(text));
    }
    return lines;
}

std::string bytesOf(const std::vector<std::string>& lines, Encoding encoding) {
    std::string text;
    for (const std::string& line : lines) text += line + "\r\n";
    std::string bytes;
    return fromUtf8(text, encoding, bytes) ? bytes : text;
}

void writeLines(const std::vector<std::string>& lines, Encoding encoding) {
    const std::string bytes = bytesOf(lines, encoding);
    if (!replaceFile(nativePath(UrlsFile), bytes)) throw ProgramError(kErrorFileAccess, UrlsFile);
}

void sortLines(std::vector<std::string>& lines) {
    std::vector<std::pair<std::string, std::string>> keyed;
    for (std::string& line : lines) keyed.emplace_back(withoutScheme(line), std::move(line));
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    lines.clear();
    for (auto& [key, line] : keyed) lines.push_back(std::move(line));
}

}  // namespace

bool IsWebAddress(std::string_view text) {
    return beginsWith(text, "http://") || beginsWith(text, "https://");
}

std::vector<std::string> ReadUrls() {
    Encoding encoding{};
    return linesOf(fileBytes(encoding));
}

bool UrlAdd(const std::string& url) {
    bool added = false;
    guarded("frmMain.UrlAdd", [&] {
        if (url.empty() || url == LastUrl) return;
        Encoding encoding{};
        std::vector<std::string> lines = linesOf(fileBytes(encoding));
        LastUrl = url;
        if (std::find(lines.begin(), lines.end(), url) != lines.end()) return;
        lines.push_back(url);
        sortLines(lines);
        writeLines(lines, encoding);
        added = true;
    });
    return added;
}

void SortURLs() {
    guarded("modMain.SortURLs", [] {
        Encoding encoding{};
        const std::string bytes = fileBytes(encoding);
        std::vector<std::string> lines = linesOf(bytes);
        sortLines(lines);
        if (bytesOf(lines, encoding) != bytes) writeLines(lines, encoding);
    });
}

void RemoveUrl(const std::string& url) {
    guarded("frmMain.btRemUrl_Click", [&] {
        Encoding encoding{};
        std::vector<std::string> lines = linesOf(fileBytes(encoding));
        std::erase_if(lines, [&](const std::string& line) { return line == url || line == '"' + url + '"'; });
        writeLines(lines, encoding);
        if (url == LastUrl) LastUrl.clear();
    });
}

}  // namespace zv
