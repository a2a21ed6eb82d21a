#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "trace/byte_source.h"
#include "trace/expansion_limit.h"
#include "trace/file_source.h"
#include "trace/page_source.h"

namespace brevold::trace {

/**
 * A recorded trace: ftrace text, a systrace page with that text, a Perfetto trace, or a latency
 * dump of the compositor. It may be compressed with gzip or "atrace -z", and be a member of a zip
 * archive. The first bytes decide. One thread.
 */
class TraceInput {
  public:
    enum class Kind : uint8_t { FtraceText, LatencyDump, Perfetto };

    /**
     * Opens a file or a pipe, or standard input for "-". ARCHIVE:MEMBER names a member of a zip
     * archive; otherwise an archive has to contain exactly one trace. Pass Reading::Repeated to
     * call open() more than once. Throws InputError if the input cannot be opened or read.
     */
    explicit TraceInput(const std::string& path, Reading reading = Reading::Once);
    /** A trace with these bytes, or with those of a member of an archive. Messages call it `name`.
     */
    TraceInput(std::unique_ptr<ByteSource> bytes, std::string name, const std::string& member = {},
               ExpansionLimits limits = {});

    /** The path, or "standard input". */
    const std::string& name() const { return mName; }
    Kind kind() const { return mKind; }

    /**
     * Returns the trace from its first byte on: decompressed, without a byte-order mark, and of a
     * page only the trace in it. Valid as long as this object; a further call rewinds it. Throws
     * InputError.
     */
    ByteSource& open();

    /** Returns the processes that a page lists, in the part read so far. */
    ProcessNames processes() const;

  private:
    const std::string mName;
    std::unique_ptr<ByteSource> mTrace;
    const PageSource* mPage = nullptr;  // mTrace, if that is a page
    Kind mKind;
};

}  // namespace brevold::trace
