#include "trace/process_dump.h"

#include <algorithm>
#include <vector>

#include "base/text.h"

namespace brevold::trace {
namespace {

using Words = std::vector<std::string_view>;

Words split(std::string_view line) {
    Words words;
    for (line = trimStart(line); !line.empty(); line = trimStart(line)) {
        words.push_back(line.substr(0, line.find_first_of(kBlanks)));
        line.remove_prefix(words.back().size());
    }
    return words;
}

}  // namespace

bool isProcessDump(std::string_view head) {
    return head.substr(0, head.find('\n')).find("PROCESS DUMP") != std::string_view::npos;
}

// Android 4.3 to 7, where the header does not name the state, and later releases, which add a list
// of the threads without the names of their processes:
//   PROCESS DUMP
//   USER     PID   PPID  VSIZE  RSS     WCHAN    PC         NAME
//   system    612   1     92344  7404  ffffffff 00000000 S /system/bin/surfaceflinger
//
//   USER      PID  PPID     VSZ    RSS WCHAN  ADDR S NAME                 COMM
//   system    612     1   92344   7404 0         0 S surfaceflinger       surfaceflinger
//   USER      PID   TID CMD
//   system    612   640 DispSync
void addProcesses(std::string_view dump, ProcessNames* names) {
    size_t nameColumn = 0;  // 0 if the rows do not name processes
    while (!dump.empty()) {
        const Words words = split(takeUntil('\n', &dump));
        if (words.size() < 2) continue;
        if (words[1] == "PID") {
            const auto name = std::find(words.begin(), words.end(), "NAME");
            const bool hasState = std::find(words.begin(), words.end(), "S") != words.end();
            nameColumn = name == words.end()
                                 ? 0
                                 : static_cast<size_t>(name - words.begin()) + (hasState ? 0 : 1);
            continue;
        }
        int32_t pid;
        if (nameColumn == 0 || words.size() <= nameColumn || !parseWhole(words[1], &pid)) continue;
        const std::string_view command = words[nameColumn];
        (*names)[pid] = command.substr(command.rfind('/') + 1);
    }
}

}  // namespace brevold::trace
