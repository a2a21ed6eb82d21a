#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "trace/byte_source.h"
#include "trace/process_dump.h"

namespace brevold::trace {

/** Returns true if bytes that begin with `head` are a web page. */
bool isPage(std::string_view head);

/**
 * The ftrace text in a page that systrace wrote: the contents of the script elements of class
 * "trace-data", or, in older pages, the string "linuxPerfData". Only those count that begin as
 * ftrace text.
 */
class PageSource : public ByteSource {
  public:
    /** Error messages begin with `name`. */
    PageSource(std::unique_ptr<ByteSource> page, std::string name);

    /** Throws InputError also if the page is incomplete or has no ftrace text. */
    size_t read(char* text, size_t size) override;
    void rewind() override;
    /** The processes that the page lists, in the part read so far. */
    const ProcessNames& processes() const { return mProcesses; }
    uint64_t inputBytes() const override { return mInput->inputBytes(); }

  private:
    enum class Place : uint8_t { Outside, TraceElement, ProcessDump, OtherElement, String };

    std::string_view rest() const { return {mBlock.data() + mBegin, mEnd - mBegin}; }
    void fill();
    void advance();
    void findTrace();
    void enterElement();
    void enterString();
    void takeElement();
    void takeString();
    void finishText(bool isWhole);
    void checkEnd() const;

    const std::unique_ptr<ByteSource> mInput;
    const std::string mName;
    std::string mBlock;  // of the page
    // Where the bytes of the block begin and end that are not yet parsed.
    size_t mBegin = 0;
    size_t mEnd = 0;
    bool mIsAtEnd = false;
    // Where the next element and string begin in the block, at or after mBegin.
    size_t mElement = 0;
    size_t mString = 0;
    Place mPlace = Place::Outside;
    bool mHasTrace = false;
    std::string mText;  // parsed; read() has given the first mGiven bytes
    size_t mGiven = 0;
    std::string mDump;  // of the processes
    ProcessNames mProcesses;
    char mLast = '\n';  // the last byte of the trace so far
};

}  // namespace brevold::trace
