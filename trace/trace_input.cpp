#include "trace/trace_input.h"

#include <optional>
#include <streambuf>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "trace/file_source.h"
#include "trace/page_source.h"

namespace brevold::trace {
namespace {

constexpr size_t kHeadBytes = 4096;
constexpr size_t kBlockBytes = 32 * 1024;

/** A number alone in the first line, or in the second where a warning comes first. */
bool isLatencyDump(std::string_view head) {
    for (int i = 0; i < 2; ++i) {
        const std::string_view line = trimEnd(takeUntil('\n', &head));
        if (!line.empty() && line.find_first_not_of("0123456789") == std::string_view::npos) {
            return true;
        }
    }
    return false;
}

}  // namespace

class TraceInput::Buffer : public std::streambuf {
  public:
    Buffer(const std::string& path, const std::string& name)
          : mName(name), mBytes(path, name), mBlock(kBlockBytes) {}

    std::string head() {
        std::string head(kHeadBytes, '\0');
        head.resize(mBytes.read(head.data(), head.size()));
        return head;
    }

    void restart(bool isPage) {
        mBytes.rewind();
        mPage.reset();
        if (isPage) mPage.emplace(mBytes, mName);
        mIsPage = isPage;
        setg(nullptr, nullptr, nullptr);
    }

    bool isPage() const { return mIsPage; }

  protected:
    int_type underflow() override {
        const size_t count = mPage ? mPage->read(mBlock.data(), mBlock.size())
                                   : mBytes.read(mBlock.data(), mBlock.size());
        setg(mBlock.data(), mBlock.data(), mBlock.data() + count);
        return count == 0 ? traits_type::eof() : traits_type::to_int_type(*gptr());
    }

  private:
    const std::string mName;
    FileBytes mBytes;
    std::vector<char> mBlock;
    std::optional<PageText> mPage;
    bool mIsPage = false;
};

TraceInput::TraceInput(const std::string& path)
      : mName(path == "-" ? "standard input" : path),
        mBuffer(std::make_unique<Buffer>(path, mName)),
        mStream(mBuffer.get()) {
    // A stream otherwise swallows what its buffer throws.
    mStream.exceptions(std::ios::badbit);
    const std::string head = mBuffer->head();
    mKind = isLatencyDump(head) ? Kind::Latency : Kind::Ftrace;
    mBuffer->restart(isPage(head));
}

TraceInput::~TraceInput() = default;

std::istream& TraceInput::openText() {
    mBuffer->restart(mBuffer->isPage());
    mStream.clear();
    return mStream;
}

}  // namespace brevold::trace
