#include "trace/trace_member.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <vector>

#include "base/error.h"
#include "base/text.h"
#include "trace/gzip_source.h"
#include "trace/head_source.h"
#include "trace/input_format.h"
#include "trace/zip_source.h"

namespace brevold::trace {
namespace {

constexpr std::string_view kBugReportFolder = "FS/data/misc/perfetto-traces/";
constexpr size_t kMaxListed = 20;

using Members = std::vector<uint64_t>;
using Archive = std::shared_ptr<const ZipArchive>;

bool isFile(const std::string& path) {
    struct stat status;
    return path == "-" || (stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode));
}

bool isTrace(const Archive& archive, uint64_t index, const std::string& name) {
    try {
        auto source = std::make_unique<HeadSource>(std::make_unique<ZipSource>(archive, index),
                                                   kFormatHeadBytes);
        if (formatOf(source->head()) == InputFormat::Gzip) {
            source = std::make_unique<HeadSource>(
                    std::make_unique<GzipSource>(std::move(source), name), kFormatHeadBytes);
        }
        switch (formatOf(source->head())) {
            case InputFormat::CompressedAtrace:
            case InputFormat::Page:
            case InputFormat::Perfetto:
            case InputFormat::LatencyDump:
            case InputFormat::FtraceText:
                return true;
            case InputFormat::Gzip:
            case InputFormat::Zip:
            case InputFormat::OtherText:
            case InputFormat::OtherBinary:
                return false;
        }
    } catch (const InputError&) {
        // An encrypted or damaged member.
    }
    return false;
}

template <typename Predicate>
Members membersThat(const Members& members, Predicate&& matches) {
    Members found;
    std::copy_if(members.begin(), members.end(), std::back_inserter(found), matches);
    return found;
}

Members findTraces(const Archive& archive, const std::string& name) {
    Members files;
    for (uint64_t i = 0; i < archive->size(); ++i) {
        const std::string member = archive->memberName(i);
        if (!member.empty() && member.back() != '/') files.push_back(i);
    }
    if (files.size() == 1) return files;
    const Members recorded = membersThat(files, [&](uint64_t i) {
        return archive->memberName(i).compare(0, kBugReportFolder.size(), kBugReportFolder) == 0;
    });
    return membersThat(recorded.empty() ? files : recorded,
                       [&](uint64_t i) { return isTrace(archive, i, name); });
}

[[noreturn]] void failWithList(const ZipArchive& archive, const Members& traces,
                               const std::string& name) {
    std::string list;
    for (size_t i = 0; i < std::min(traces.size(), kMaxListed); ++i)
        list += (i == 0 ? "" : ", ") + quote(archive.memberName(traces[i]));
    if (traces.size() > kMaxListed) list += fmt::format(" and {} more", traces.size() - kMaxListed);
    throw InputError(
            fmt::format("{}: expected an archive with one trace, got {}; choose one of them as "
                        "ARCHIVE:MEMBER: {}",
                        name, traces.size(), list));
}

}  // namespace

MemberPath splitMemberPath(const std::string& path) {
    if (isFile(path)) return {path, {}};
    for (size_t colon = path.find(':'); colon != std::string::npos;
         colon = path.find(':', colon + 1)) {
        const std::string file = path.substr(0, colon);
        if (isFile(file)) return {file, path.substr(colon + 1)};
    }
    return {path, {}};
}

std::unique_ptr<ByteSource> openTraceMember(ByteSource& bytes, const std::string& name,
                                            const std::string& member, ExpansionLimits limits) {
    const auto archive = std::make_shared<const ZipArchive>(bytes, name, limits);
    if (!member.empty()) {
        const std::optional<uint64_t> index = archive->find(member);
        if (!index) throw InputError(name + ": the archive has no such member");
        return std::make_unique<ZipSource>(archive, *index);
    }
    const Members traces = findTraces(archive, name);
    if (traces.empty()) {
        throw InputError(name + ": expected an archive with a trace, found none in it");
    }
    if (traces.size() > 1) failWithList(*archive, traces, name);
    return std::make_unique<ZipSource>(archive, traces.front());
}

}  // namespace brevold::trace
