#include "trace/trace_input.h"

#include <string_view>

#include "base/text.h"
#include "trace/gzip_source.h"
#include "trace/head_source.h"
#include "trace/latency_dump.h"
#include "trace/page_source.h"
#include "trace/perfetto_packets.h"

namespace brevold::trace {
namespace {

constexpr size_t kHeadBytes = 4096;

std::string nameOf(const std::string& path) {
    return path == "-" ? "standard input" : path;
}

}  // namespace

TraceInput::TraceInput(const std::string& path, Reading reading)
      : TraceInput(std::make_unique<FileSource>(path, nameOf(path), reading), nameOf(path)) {}

TraceInput::TraceInput(std::unique_ptr<ByteSource> bytes, std::string name)
      : mName(std::move(name)) {
    auto source = std::make_unique<HeadSource>(std::move(bytes), kHeadBytes);
    if (isGzip(source->head())) {
        auto plain = std::make_unique<GzipSource>(std::move(source), mName);
        source = std::make_unique<HeadSource>(std::move(plain), kHeadBytes);
    }
    const std::string& head = source->head();
    mKind = beginsAsPerfetto(head) ? Kind::Perfetto
            : isLatencyDump(head)  ? Kind::LatencyDump
                                   : Kind::FtraceText;
    if (isPage(head)) {
        mText = std::make_unique<PageSource>(std::move(source), mName);
    } else {
        mText = std::move(source);
    }
}

ByteSource& TraceInput::open() {
    mText->rewind();
    return *mText;
}

}  // namespace brevold::trace
