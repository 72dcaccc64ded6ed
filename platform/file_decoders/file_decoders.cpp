#include "platform/file_decoders/file_decoders.h"

#include "platform/ffmpeg/ffmpeg_decoders.h"
#include "platform/openmpt/openmpt_decoder.h"

namespace zv {
namespace {

class FileDecoders : public engine::DecoderSource {
  public:
    std::unique_ptr<engine::Decoder> openFile(const std::string& path, int& error) override {
        return openFileDecoder(path, error);
    }
    std::unique_ptr<engine::Decoder> openModule(const std::string& path, int& error) override {
        return openModuleDecoder(path, error);
    }
    std::unique_ptr<engine::Decoder> openUrl(const std::string& url, std::uint32_t timeoutMs,
                                             int& error) override {
        return openUrlDecoder(url, timeoutMs, error);
    }
};

}  // namespace

std::shared_ptr<engine::DecoderSource> makeFileDecoders() { return std::make_shared<FileDecoders>(); }

}  // namespace zv
