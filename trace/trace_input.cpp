#include "trace/trace_input.h"

#include <utility>

#include "base/error.h"
#include "trace/gzip_source.h"
#include "trace/head_source.h"
#include "trace/input_format.h"
#include "trace/tail_source.h"
#include "trace/trace_member.h"
#include "trace/unreadable_format.h"

namespace brevold::trace {
namespace {

/** Such as gzip in a zip archive. */
constexpr int kMaxLayers = 4;

std::string nameOf(const std::string& path) {
    return path == "-" ? "standard input" : path;
}

/** Opens the innermost bytes of an input. */
class Unpacker {
  public:
    Unpacker(const std::string& name, const std::string& member, ExpansionLimits limits)
          : mName(name), mMember(member), mLimits(limits) {}

    std::unique_ptr<HeadSource> unpack(std::unique_ptr<ByteSource> bytes) {
        std::unique_ptr<HeadSource> source;
        for (int layers = 0; bytes; ++layers) {
            if (layers > kMaxLayers) {
                throw InputError(mName + ": is compressed too many times; decompress it first");
            }
            source = std::make_unique<HeadSource>(std::move(bytes), kFormatHeadBytes);
            bytes = unpackLayer(source);
        }
        if (!mMember.empty()) {
            throw InputError(mName + ": expected a zip archive before the colon, got another file");
        }
        return source;
    }

  private:
    /** Returns null, and leaves the source as it is, if it is not packed. */
    std::unique_ptr<ByteSource> unpackLayer(std::unique_ptr<HeadSource>& source) {
        const std::string& head = source->head();
        if (const size_t markBytes = byteOrderMarkBytes(head)) {
            return std::make_unique<TailSource>(std::move(source), markBytes);
        }
        switch (formatOf(head)) {
            case InputFormat::Gzip:
                return inflate(std::move(source), GzipSource::Format::Gzip);
            case InputFormat::Zip:
                return openTraceMember(*source, mName, std::exchange(mMember, {}), mLimits);
            case InputFormat::CompressedAtrace: {
                const size_t offset = compressedAtraceOffset(head);
                return inflate(std::make_unique<TailSource>(std::move(source), offset),
                               GzipSource::Format::Zlib);
            }
            default:
                return nullptr;
        }
    }

    std::unique_ptr<ByteSource> inflate(std::unique_ptr<ByteSource> source,
                                        GzipSource::Format format) {
        return std::make_unique<GzipSource>(std::move(source), mName, format, mLimits);
    }

    const std::string& mName;
    std::string mMember;
    const ExpansionLimits mLimits;
};

std::unique_ptr<ByteSource> openFile(const std::string& path, Reading reading) {
    return std::make_unique<FileSource>(splitMemberPath(path).file, nameOf(path), reading);
}

}  // namespace

TraceInput::TraceInput(const std::string& path, Reading reading)
      : TraceInput(openFile(path, reading), nameOf(path), splitMemberPath(path).member) {}

TraceInput::TraceInput(std::unique_ptr<ByteSource> bytes, std::string name,
                       const std::string& member, ExpansionLimits limits)
      : mName(std::move(name)), mKind(Kind::FtraceText) {
    std::unique_ptr<HeadSource> source = Unpacker(mName, member, limits).unpack(std::move(bytes));
    requireReadable(source->head(), mName);
    switch (formatOf(source->head())) {
        case InputFormat::Perfetto:
            mKind = Kind::Perfetto;
            break;
        case InputFormat::LatencyDump:
            mKind = Kind::LatencyDump;
            break;
        case InputFormat::Page: {
            auto page = std::make_unique<PageSource>(std::move(source), mName);
            mPage = page.get();
            mTrace = std::move(page);
            return;
        }
        case InputFormat::OtherBinary:
            throw InputError(mName + ": expected a trace, got binary data of an unknown format");
        default:
            break;
    }
    mTrace = std::move(source);
}

ProcessNames TraceInput::processes() const {
    return mPage == nullptr ? ProcessNames() : mPage->processes();
}

ByteSource& TraceInput::open() {
    mTrace->rewind();
    return *mTrace;
}

}  // namespace brevold::trace
