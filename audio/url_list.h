/// urls.txt: the addresses of web streams, one a line, sorted by what follows the scheme. [control]
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zv {

/// http:// or https:// in front, whatever its case.
bool IsWebAddress(std::string_view text);
/// The addresses in the order of the file, without blank lines and without doubles.
std::vector<std::string> ReadUrls();
/// Adds an address unless it was the last one added or stands in the file; the file is sorted then. True when the list
/// has changed.
bool UrlAdd(const std::string& url);
/// Sorts the file by host, without regard to the scheme and to case; doubles go.
void SortURLs();
/// Takes an address out of the file, with or without quotation marks around it.
void RemoveUrl(const std::string& url);

}  // namespace zv
