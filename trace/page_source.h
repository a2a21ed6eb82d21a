#pragma once

#include <memory>
#include <string>

#include "trace/byte_source.h"

namespace brevold::trace {

/** Returns true if bytes that begin with `head` are a web page. */
bool isPage(const std::string& head);

/**
 * The ftrace text in a page that systrace wrote: the contents of the script elements of class
 * "trace-data" that begin as ftrace text, or, in older pages, the string "linuxPerfData".
 */
class PageSource : public ByteSource {
  public:
    /** Error messages begin with `name`. */
    PageSource(std::unique_ptr<ByteSource> page, std::string name);

    /** Throws InputError also if the page is incomplete or has no ftrace text. */
    size_t read(char* text, size_t size) override;
    void rewind() override;

  private:
    enum class Place { Outside, TraceElement, OtherElement, String };

    bool advance();
    bool findTrace();
    bool enterElement();
    bool takeElement();
    bool takeString();
    void finishLines();
    void checkEnd() const;

    const std::unique_ptr<ByteSource> mInput;
    const std::string mName;
    Place mPlace = Place::Outside;
    bool mHasTrace = false;
    bool mIsAtEnd = false;
    std::string mPage;  // read and not yet parsed
    std::string mText;  // parsed; read() has given the first mGiven bytes
    size_t mGiven = 0;
    char mLast = '\n';  // last byte of the string so far
};

}  // namespace brevold::trace
