/// The network of a rehearsal: what its script's `web` lines say is answered, for web streams and for the
/// program's own requests, and every request is kept. [control] or on a job that runs in its place.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "engine/ports.h"

namespace zv {

struct WebRule {
    enum class Kind : std::uint8_t { file, off, hang };
    Kind kind = Kind::off;
    std::string file;  ///< whose bytes are sent
    int status = 200;
    std::string type;  ///< content type; one that ends in ";live" never ends
};

class RehearsedWeb {
  public:
    static RehearsedWeb& instance();

    /// From now on, for every address that begins with `url`; the longest such beginning holds.
    void answer(const std::string& url, WebRule rule);
    /// The rule that holds for `url`; Kind::off without one. onRequest hears of the request.
    WebRule ask(const std::string& method, const std::string& url, const std::string& body);

    std::function<void(const std::string& method, const std::string& url, const std::string& body)> onRequest;

  private:
    std::map<std::string, WebRule> rules_;
};

/// The decoders of files, and of addresses by the rules.
std::shared_ptr<engine::DecoderSource> makeRehearsedDecoders();

}  // namespace zv
