// What a fuzzer found once, and some chance besides: tests/fuzz without a fuzzer.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "tests/engine/random_operations.h"
#include "tests/support/places.h"

namespace zv::engine::test {
namespace {

TEST(Operations, WhatWasFoundHolds) {
    int count = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(zv::test::sourceDir() + "/tests/fuzz/found/operations_fuzz")) {
        SCOPED_TRACE(entry.path());
        std::ifstream in(entry.path(), std::ios::binary);
        const std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(in), {});
        RandomOperations::performInput(bytes);
        ++count;
    }
    EXPECT_GT(count, 0);
}

TEST(Operations, AnyHold) {
    std::mt19937 random(8);
    for (int input = 0; input < 40; ++input) {
        std::vector<std::uint8_t> bytes(1200);
        for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
        RandomOperations::performInput(bytes);
    }
}

}  // namespace
}  // namespace zv::engine::test
