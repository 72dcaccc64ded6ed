// The audio library as a program meets it: absent, broken, then there.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>

#include "engine/bass.h"
#include "platform/audio_library.h"
#include "tests/support/places.h"

namespace {

const std::string bin = zv::test::binDir();
const std::string kPoorLibrary = bin + ZV_POOR_LIBRARY;

/// What `pattern` finds in a file of the sources, each find as the pieces that it names.
std::set<std::vector<std::string>> found(const std::string& file, const std::string& pattern) {
    std::ifstream in(zv::test::sourceDir() + file);
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    std::set<std::vector<std::string>> all;
    const std::regex wanted(pattern);
    for (auto match = std::sregex_iterator(text.begin(), text.end(), wanted); match != std::sregex_iterator();
         ++match)
        all.emplace(std::next(match->begin()), match->end());
    return all;
}

/// "bool memory, const void* path" and "memory, path" alike: the last words.
std::string names(const std::string& list) {
    static const std::regex type(R"([^,]*[ *](\w+))");
    return std::regex_replace(list, type, "$1,");
}

TEST(AudioLibrary, ForwardsEveryOperationOfTheHeaderToItself) {
    const auto declared = found("/engine/bass.h", R"(\n(?:const )?\w+\*? (BASS_\w+)\()");
    EXPECT_GT(declared.size(), 45U);
    std::set<std::vector<std::string>> bound, forwarded;
    for (const auto& row : found("/engine/import/library.cpp", R"re(symbol<(BASS_\w+)>\("(BASS_\w+)"\))re")) {
        EXPECT_EQ(row[0], row[1]);
        bound.insert({row[1]});
    }
    for (const auto& row :
         found("/engine/import/library.cpp",
               R"((BASS_\w+)\(([^()]*)\) \{\s*return forward<(BASS_\w+)>\([^,)]*(?:, )?([^()]*)\))")) {
        EXPECT_EQ(row[0], row[2]);
        EXPECT_EQ(names(row[1]), row[3].empty() ? "" : names(" " + row[3])) << row[0];
        forwarded.insert({row[0]});
    }
    EXPECT_EQ(declared, bound);
    EXPECT_EQ(declared, forwarded);
}

TEST(AudioLibrary, FailsSoftlyUntilItIsLoaded) {
    // Nothing is loaded yet: every kind of result says failure.
    EXPECT_EQ(nullptr, zv::engine::audioLibraryControl());
    EXPECT_EQ(0U, BASS_GetVersion());
    EXPECT_NE(BASS_OK, BASS_ErrorGetCode());
    EXPECT_FALSE(BASS_Init(-1, 44'100, 0, nullptr, nullptr));
    EXPECT_EQ(0U, BASS_StreamCreateFile(false, "x", 0, 0, 0));
    EXPECT_EQ(BASS_NO_POSITION, BASS_ChannelGetLength(1, BASS_POS_BYTE));
    EXPECT_EQ(-1.0, BASS_ChannelBytes2Seconds(1, 4));
    EXPECT_EQ(~0U, BASS_ChannelFlags(1, 0, 0));
    EXPECT_EQ(BASS_ACTIVE_STOPPED, BASS_ChannelIsActive(1));
    EXPECT_EQ(nullptr, BASS_ChannelGetTags(1, BASS_TAG_META));

    const std::string folder = testing::TempDir();
    std::ofstream(folder + "/text.so") << "no library";
    ASSERT_TRUE(std::filesystem::exists(kPoorLibrary));
    for (const std::string& path :
         {folder + "/missing.so", folder + "/text.so", kPoorLibrary, std::string()}) {
        EXPECT_FALSE(zv::loadAudioLibrary(path)) << path;
        EXPECT_EQ(nullptr, zv::engine::audioLibraryControl());
        EXPECT_EQ(0U, BASS_GetVersion()) << path;
    }

    int symbols = 0;
    for (int lacking = 0, asked = 0; lacking == 0 || lacking < symbols; ++lacking, symbols = asked) {
        asked = 0;
        EXPECT_FALSE(zv::engine::bindAudioLibrary(
            [&](const char*) { return asked++ == lacking ? nullptr : static_cast<void*>(&symbols); }));
    }
    EXPECT_GT(symbols, 45);
    EXPECT_EQ(0U, BASS_GetVersion());

    const std::string path = bin + "/" + zv::audioLibraryName();
    ASSERT_TRUE(zv::loadAudioLibrary(path)) << path;
    EXPECT_EQ(516U, BASS_GetVersion() >> 16);
    EXPECT_NE(nullptr, zv::engine::audioLibraryControl());
    EXPECT_EQ(BASS_NO_POSITION, BASS_ChannelGetLength(1, BASS_POS_BYTE));
    EXPECT_EQ(BASS_ERROR_HANDLE, BASS_ErrorGetCode());
    EXPECT_TRUE(zv::loadAudioLibrary(folder + "/missing.so")) << "what is loaded stays";
}

}  // namespace
