#pragma once

#include <cstdint>
#include <istream>
#include <memory>
#include <string>

namespace brevold::trace {

/**
 * A trace as its user has it: a file, a pipe, or standard input for "-"; plain or gzip-compressed;
 * an ftrace text, a systrace page with that text inside, or a latency dump of the compositor. The
 * content tells which. One thread.
 */
class TraceInput {
  public:
    enum class Kind : uint8_t { Ftrace, Latency };

    /** Throws InputError when it cannot be opened or read. */
    explicit TraceInput(const std::string& path);
    ~TraceInput();

    /** What messages call it: the path, or "standard input". */
    const std::string& name() const { return mName; }
    Kind kind() const { return mKind; }

    /**
     * Its text from the first line on: of a page, only the trace in it. Each call starts anew,
     * gives the same bytes and ends the stream of the call before. Reading from the stream throws
     * InputError where the input is cut short or damaged.
     */
    std::istream& openText();

  private:
    class Buffer;

    const std::string mName;
    std::unique_ptr<Buffer> mBuffer;
    std::istream mStream;
    Kind mKind;
};

}  // namespace brevold::trace
