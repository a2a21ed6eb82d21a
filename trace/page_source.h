#pragma once

#include <cstddef>
#include <string>

#include "trace/file_source.h"

namespace brevold::trace {

/** Whether a file that begins so is a web page. */
bool isPage(const std::string& head);

/**
 * The trace in a page that systrace wrote: its script elements of the class "trace-data" that hold
 * ftrace text (a list of processes may stand in others), or in older pages the string
 * "linuxPerfData".
 */
class PageText {
  public:
    /** The bytes stand at the page's first one. Messages call it by the name. */
    PageText(FileBytes& bytes, std::string name);

    /** As FileBytes::read; throws InputError also where the page ends too early, or has no trace.
     */
    size_t read(char* text, size_t size);

  private:
    enum class Place { Outside, Element, OtherElement, String };

    bool advance();
    bool findTrace();
    bool enterElement();
    bool takeElement();
    bool takeString();
    void finishLines();
    void checkEnd() const;

    FileBytes& mBytes;
    const std::string mName;
    Place mPlace = Place::Outside;
    bool mHasTrace = false;
    bool mIsAtEnd = false;
    std::string mPage;  // read, and not yet looked at
    std::string mText;  // found, and not yet handed out from mGiven on
    size_t mGiven = 0;
    char mLast = '\n';  // of the string so far
};

}  // namespace brevold::trace
