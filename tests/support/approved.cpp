#include "tests/support/approved.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <utility>

#include "tests/support/places.h"

namespace zv::test {

std::string paragraph(const std::vector<std::string>& parts, const std::string& between) {
    constexpr std::size_t kLine = 1500;
    std::string text, line;
    for (const std::string& part : parts) {
        if (!line.empty() && line.size() + part.size() > kLine) text += std::exchange(line, {}) + "\n";
        line += (line.empty() ? "" : between) + part;
    }
    return line.empty() ? text : text + line + "\n";
}

void expectApproved(const std::string& file, const std::string& text) {
    const std::string path = sourceDir() + "/tests/" + file;
    if (std::getenv("ZV_APPROVE") != nullptr) {
        std::ofstream(path, std::ios::binary) << text;
        return;
    }
    std::ifstream in(path, std::ios::binary);
    const std::string approved{std::istreambuf_iterator<char>(in), {}};
    if (text == approved) return;
    const auto at = std::ranges::mismatch(text, approved).in1 - text.begin();
    const std::size_t line = at == 0 ? 0 : text.rfind('\n', static_cast<std::size_t>(at) - 1) + 1;
    const auto lineOf = [line](const std::string& whole) {
        return whole.substr(line, whole.find('\n', line) - line);
    };
    ADD_FAILURE() << file << ":" << 1 + std::count(text.begin(), text.begin() + at, '\n') << ": "
                  << lineOf(approved) << "\nbut now: " << lineOf(text) << "\nthe whole:\n"
                  << text;
}

}  // namespace zv::test
