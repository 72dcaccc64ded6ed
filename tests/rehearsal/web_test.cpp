// The network of a rehearsal, for requests; for streams: tests/rehearsal/shows/live.txt.
#include "platform/rehearsal/web.h"

#include "platform/clock.h"
#include "platform/http.h"
#include "platform/rehearsal/virtual_clock.h"
#include "show.h"

namespace zv::test {
namespace {

using Kind = WebRule::Kind;

TEST(RehearsedWeb, AnswersRequestsAsTheLongestRuleSays) {
    const Show show;
    const std::string news = (show.home() / "zv.ini").string();
    std::string asked;
    RehearsedWeb& web = RehearsedWeb::instance();
    web.onRequest = [&](const std::string& method, const std::string& url, const std::string& body) {
        asked = method + " " + url + " " + body;
    };
    web.answer("http://a/", {Kind::file, news, 200, "text/plain"});
    web.answer("http://a/gone", {Kind::file, news, 404, ""});
    web.answer("http://a/gone/slow", {Kind::hang, "", 200, ""});
    web.answer("http://a/b", {Kind::off, "", 200, ""});
    const struct {
        const char* url;
        int status;
        const char* error;
        int ms;  ///< from the request to the reply
    } rows[] = {
        {"http://a/x?lastver", 200, "", 70},
        {"http://a/gone", 404, "", 70},
        {"http://a/gone/slow/1", 0, "timed out", 3020},
        {"http://a/b", 0, "connection refused", 20},
        {"http://elsewhere/", 0, "connection refused", 20},
    };
    VirtualClock& clock = VirtualClock::instance();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.url);
        HttpRequest request;
        request.method = "POST";
        request.url = row.url;
        request.body = "a=1";
        request.timeoutMs = 3000;
        const std::int64_t start = clock.now();
        std::int64_t came = -1;
        HttpReply reply;
        const Job job = startRequest(request, [&](const HttpReply& got) {
            came = monotonicMs() - start;
            reply = got;
        });
        clock.advanceTo(start + 10'000);
        EXPECT_EQ(came, row.ms);
        EXPECT_EQ(reply.status, row.status);
        EXPECT_EQ(reply.error, row.error);
        EXPECT_EQ(reply.body, row.status == 0 ? "" : contents(news));
        EXPECT_EQ(asked, std::string("POST ") + row.url + " a=1");
    }
    HttpRequest download;
    download.url = "http://a/setup.exe";
    download.file = (show.home() / "Update.exe").string();
    int last = 0;
    std::int64_t bytes = 0;
    Job job = startRequest(
        download, [&](const HttpReply& got) { bytes = got.bytes; }, [&](int percent) { last = percent; });
    clock.advanceTo(clock.now() + 1000);
    EXPECT_EQ(contents(download.file), contents(news));
    EXPECT_EQ(bytes, static_cast<std::int64_t>(contents(news).size()));
    EXPECT_EQ(last, 100);
    bool told = false;
    download.url = "http://a/gone/slow";
    job = startRequest(download, [&](const HttpReply&) { told = true; });
    clock.advanceTo(clock.now() + 100);
    job.cancel();
    clock.advanceTo(clock.now() + 10'000);
    EXPECT_FALSE(told);
    web.onRequest = nullptr;
}

}  // namespace
}  // namespace zv::test
