#pragma once

#include <regex>
#include <string>

/** Writes systrace pages for tests. */
namespace brevold {

/** A page of Android 4.4 and later, whose viewer consists of the script. */
inline std::string pageOf(const std::string& content, const std::string& script = "x") {
    const std::string element = "<script class=\"trace-data\" type=\"application/text\">\n";
    return "<!DOCTYPE html>\n<script>" + script + "</script>\n" + element +
           "PROCESS DUMP\n  </script>\n" + element + content + "  </script>\n</html>\n";
}

/** A page of Android 4.1 to 4.3. */
inline std::string oldPageOf(const std::string& content) {
    std::string escaped = std::regex_replace(content, std::regex("[\"\\\\]"), "\\$&");
    escaped.pop_back();  // The string may end without a newline.
    escaped = std::regex_replace(escaped, std::regex("\n"), "\\n\\\n");
    return "<html><script>\n  var linuxPerfData = \"\\\n" + escaped + "\";\n</script></html>";
}

}  // namespace brevold
