#pragma once

#include <regex>
#include <string>

/** Writes systrace pages for tests. */
namespace brevold {

/** The element that holds a trace since Android 4.4. */
inline std::string elementOf(const std::string& content) {
    return "<script class=\"trace-data\" type=\"application/text\">\n" + content + "  </script>\n";
}

/** The string that holds a trace in Android 4.1 to 4.3. */
inline std::string stringOf(const std::string& content) {
    std::string escaped = std::regex_replace(content, std::regex("[\"\\\\]"), "\\$&");
    escaped.pop_back();  // The string may end without a newline.
    escaped = std::regex_replace(escaped, std::regex("\n"), "\\n\\\n");
    return "linuxPerfData = \"\\\n" + escaped + "\";\n";
}

/** A page of Android 4.4 and later, whose viewer consists of the script. */
inline std::string pageOf(const std::string& content, const std::string& script = "x") {
    return "<!DOCTYPE html>\n<script>" + script + "</script>\n" + elementOf("PROCESS DUMP\n") +
           elementOf(content) + "</html>\n";
}

/** A page of Android 4.1 to 4.3. */
inline std::string oldPageOf(const std::string& content) {
    return "<html><script>\n  var " + stringOf(content) + "</script></html>";
}

}  // namespace brevold
