#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "trace/byte_source.h"
#include "trace/file_source.h"

namespace brevold::trace {

/**
 * A recorded trace, plain or gzip-compressed: ftrace text, a systrace page with that text, a
 * Perfetto trace, or a latency dump of the compositor. The first bytes decide which. One thread.
 */
class TraceInput {
  public:
    enum class Kind : uint8_t { FtraceText, LatencyDump, Perfetto };

    /**
     * Opens a file or a pipe, or standard input for "-". Pass Reading::Repeated to call open() more
     * than once. Throws InputError if the input cannot be opened or read.
     */
    explicit TraceInput(const std::string& path, Reading reading = Reading::Once);
    /** A trace with these bytes. Messages call it `name`. */
    TraceInput(std::unique_ptr<ByteSource> bytes, std::string name);

    /** The path, or "standard input". */
    const std::string& name() const { return mName; }
    Kind kind() const { return mKind; }

    /**
     * Returns the trace from its first byte on: decompressed, and of a page only the trace in it.
     * Valid as long as this object; a further call rewinds it. Throws InputError.
     */
    ByteSource& open();

  private:
    const std::string mName;
    std::unique_ptr<ByteSource> mText;
    Kind mKind;
};

}  // namespace brevold::trace
