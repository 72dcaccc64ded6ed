#include "tests/support/approved.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

#include "tests/support/places.h"

namespace zv::test {

void expectApproved(const std::string& file, const std::string& text) {
    const std::string path = sourceDir() + "/tests/" + file;
    if (std::getenv("ZV_APPROVE") != nullptr) {
        std::ofstream(path, std::ios::binary) << text;
        return;
    }
    std::ifstream in(path, std::ios::binary);
    const std::string approved{std::istreambuf_iterator<char>(in), {}};
    if (text == approved) return;
    std::istringstream now(text), then(approved);
    std::string is, was;
    for (int line = 1; now || then; ++line) {
        if (!std::getline(now, is)) is = "(the end)";
        if (!std::getline(then, was)) was = "(the end)";
        if (is == was) continue;
        ADD_FAILURE() << file << ":" << line << ": " << was << "\nbut now: " << is << "\nthe whole:\n"
                      << text;
        return;
    }
    ADD_FAILURE() << file << " differs in its last line end";
}

}  // namespace zv::test
