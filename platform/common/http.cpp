#include "platform/http.h"

#include <memory>
#include <utility>

namespace zv {

Job startRequest(HttpRequest request, std::function<void(const HttpReply&)> done,
                 std::function<void(int)> progressed) {
    auto reply = std::make_shared<HttpReply>();
    JobOrder order;
    order.name = "HTTP " + request.url;
    order.work = [reply, request = std::move(request)](JobWork& work) {
        *reply = performHttp(request, work);
    };
    order.done = [reply, done = std::move(done)] {
        if (done) done(*reply);
    };
    if (progressed) {
        order.progressed = [progressed = std::move(progressed)](int percent, const std::string&) {
            progressed(percent);
        };
    }
    return startJob(std::move(order));
}

}  // namespace zv
