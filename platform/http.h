/// Requests of the program's own over http and https: updates, account, reports. A desktop asks the network, a
/// rehearsal answers from its script's `web` lines.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/jobs.h"

namespace zv {

struct HttpRequest {
    std::string method = "GET";  ///< "GET" or "POST"
    std::string url;
    std::string body;                                          ///< of a POST
    std::vector<std::pair<std::string, std::string>> headers;  ///< "Content-Type", ...
    int timeoutMs = 5000;  ///< connecting, and then each wait for more, at most
    std::string file;      ///< where the answer's bytes go; empty: into the reply
};

struct HttpReply {
    int status = 0;     ///< HTTP status; 0: nobody answered in time, or the answer broke off
    std::string error;  ///< why the status is 0, or the file could not be written
    std::string body;
    std::int64_t bytes = 0;  ///< received
};

/// Sends a request and waits for the answer; redirections are followed. Progress is told in percent where the
/// length is known. A job that is cancelled ends with status 0. [worker]
HttpReply performHttp(const HttpRequest& request, JobWork& work);

/// A request as a job: `done` is called with the reply, whatever it is. [control]
[[nodiscard]] Job startRequest(HttpRequest request, std::function<void(const HttpReply&)> done,
                               std::function<void(int percent)> progressed = {});

}  // namespace zv
