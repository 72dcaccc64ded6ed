// Addresses, playlists, titles and seconds, as texts and numbers.

#include "audio/stream_title.h"
#include "audio/url_list.h"
#include "audio/wall_seconds.h"
#include "platform/common/web_playlist.h"
#include "tests/support/studio.h"

namespace zv::test {
namespace {

TEST(StreamTitle, IsReadAsStationsSendIt) {
    const struct {
        std::string told, title;
    } rows[] = {
        {"StreamTitle='A - B';StreamUrl='http://x';", "A - B"},
        {"streamtitle='Don't Stop';", "Don't Stop"},
        {"StreamTitle='It's; 'quoted'; here';StreamUrl='';", "It's; 'quoted'; here"},
        {std::string("StreamTitle='padded  ';\0\0\0", 26), "padded"},
        {"StreamTitle='cut off", "cut off"},
        {"StreamTitle='caf\xE9\x01\n';", "caf\xC3\xA9"},
        {"StreamTitle='';", ""},
        {"StreamUrl='a';", ""},
        {"", ""},
        {"StreamTitle='" + std::string(5000, 'x') + "';", std::string(200, 'x')},
    };
    for (const auto& row : rows) EXPECT_EQ(StreamTitle(row.told), row.title) << row.told.substr(0, 60);
}

TEST(WebPlaylist, NamesAddressesInAllItsFormats) {
    using Addresses = std::vector<std::string>;
    const std::string base = "http://radio.example/a/list.m3u?session=http://1/2";
    const struct {
        std::string text;
        Addresses addresses;
        bool segmented = false;
    } rows[] = {
        {"#EXTM3U\r\n#EXTINF:-1,Radio\r\nhttp://one/x\r\n\r\nhttps://two/y?z=1\r\nhttp://one/x\r\n",
         {"http://one/x", "https://two/y?z=1"}},
        {"\xEF\xBB\xBF  http://bare/\n", {"http://bare/"}},
        {"#EXTM3U\nlow.mp3\n/high.mp3\n//other/z\n",
         {"http://radio.example/a/low.mp3", "http://radio.example/high.mp3", "http://other/z"}},
        {"#EXTM3U\n#EXT-X-TARGETDURATION:4\n#EXTINF:4,\nseg1.ts\n", {"http://radio.example/a/seg1.ts"}, true},
        {"[Playlist]\nNumberOfEntries=2\nfile1=http://one/\nTitle1=x=y\nFile2=http://two/?a=b\n",
         {"http://one/", "http://two/?a=b"}},
        {"<?xml version=\"1.0\"?><playlist><trackList><track><location> http://one/?a=1&amp;b=2 "
         "</location></track>"
         "<track><Location>http://two/</Location></track></trackList></playlist>",
         {"http://one/?a=1&b=2", "http://two/"}},
        {"<?xml version=\"1.0\"?><html><location>http://one/</location></html>", {}},
        {"<playlist><location>http://one/", {}},
        {"#EXTM3U\nfile:///etc/passwd\nftp://x/\nhttp://" + std::string(3000, 'a') + "/\n", {}},
        {"ID3 and sound", {}},
        {"", {}},
    };
    for (const auto& row : rows) {
        const WebPlaylist list = ReadWebPlaylist(row.text, base);
        EXPECT_EQ(list.addresses, row.addresses) << row.text.substr(0, 60);
        EXPECT_EQ(list.segmented, row.segmented) << row.text.substr(0, 60);
        EXPECT_EQ(LooksLikePlaylist(row.text.substr(0, 32)), !row.text.empty() && row.text[0] != 'I');
    }
}

class Urls : public FolderTest {};

TEST_F(Urls, AreSortedByHostWithoutDoubles) {
    write("urls.txt",
          "https://zeta/\r\n\r\nhttp://Beta/x\nhttps://alpha/\r\nhttp://Beta/x\r\n\"http://quoted/\"\r\n");
    SortURLs();
    const std::string sorted = "\"http://quoted/\"\r\nhttps://alpha/\r\nhttp://Beta/x\r\nhttps://zeta/\r\n";
    EXPECT_EQ(read("urls.txt"), sorted);
    EXPECT_FALSE(UrlAdd("http://Beta/x"));
    EXPECT_TRUE(UrlAdd("http://gamma/\xC3\xA9"));
    EXPECT_FALSE(UrlAdd("http://gamma/\xC3\xA9"));
    RemoveUrl("http://quoted/");
    RemoveUrl("https://zeta/");
    EXPECT_EQ(read("urls.txt"), "https://alpha/\r\nhttp://Beta/x\r\nhttp://gamma/\xC3\xA9\r\n");
    RemoveUrl("http://gamma/\xC3\xA9");
    EXPECT_TRUE(UrlAdd("http://gamma/\xC3\xA9")) << "it was taken out";
    write("urls.txt", "http://b/\xE9\r\n");  // a file of another encoding keeps it
    EXPECT_TRUE(UrlAdd("http://a/\xC3\xA9"));
    EXPECT_EQ(read("urls.txt"), "http://a/\xE9\r\nhttp://b/\xE9\r\n");
}

TEST(WallSeconds, EachOnceAndLateOnesMadeGoodButNotOverAClockThatWasSet) {
    const struct {
        std::int64_t wall, monotonic;  // ms
        std::int64_t first, last;
    } rows[] = {
        {100'000, 0, 100, 100},        {100'999, 999, 101, 100},       // a little early: none has begun
        {101'000, 1000, 101, 101},     {105'300, 5300, 102, 105},      // the machine was busy
        {106'000, 6000, 106, 106},     {105'900, 6100, 107, 105},      // put right by a little
        {107'000, 7200, 107, 107},     {3'707'000, 7300, 3707, 3707},  // an hour on
        {3'708'000, 8300, 3708, 3708}, {108'000, 8400, 108, 108},      // and back
        {109'000, 9400, 109, 109},
    };
    WallSeconds seconds;
    for (const auto& row : rows) {
        const WallSeconds::Span span = seconds.begun(row.wall, row.monotonic);
        EXPECT_EQ(span.first, row.first) << row.wall;
        EXPECT_EQ(span.last, row.last) << row.wall;
    }
    EXPECT_EQ(WallMs({2026, 1, 1, 4, 0, 0, 0, 5}) - WallMs({2025, 12, 31, 3, 23, 59, 59, 0}), 1005);
}

}  // namespace
}  // namespace zv::test
