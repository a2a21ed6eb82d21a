#include "verify/library_marks.h"

namespace brevold::verify {

namespace {

/** Sorts sections by their labels. */
class MarkCollector {
  public:
    void add(const trace::LibrarySection& section) {
        const ServiceSection service = {section.beginNs, section.endNs.value_or(section.beginNs),
                                        0.0};
        if (!section.endNs) ++mMarks.ignored.withoutEnd;
        std::visit([&](const auto& label) { add(section, service, label); },
                   parseLabel(section.label));
    }

    void addOtherProcess() { ++mMarks.ignored.otherProcess; }

    LibraryMarks take(int64_t endsWithoutBegin) {
        mMarks.ignored.withoutBegin = endsWithoutBegin;
        return std::move(mMarks);
    }

  private:
    using Section = trace::LibrarySection;

    void add(const Section& section, const ServiceSection& /*service*/, LabelError error) {
        mMarks.unreadable.push_back({section.beginNs, section.tid});
        switch (error) {
            case LabelError::Cut:
                ++mMarks.ignored.cut;
                break;
            case LabelError::OutOfRange:
                ++mMarks.ignored.outOfRange;
                break;
            case LabelError::Unknown:
                ++mMarks.ignored.unknown;
                break;
        }
    }
    void add(const Section& section, const ServiceSection& /*service*/,
             const DecisionLabel& label) {
        mMarks.decisions.push_back({section.beginNs, section.tid, label});
    }
    void add(const Section& section, const ServiceSection& /*service*/, const WindowLabel& label) {
        mMarks.windows.push_back({section.beginNs, label});
    }
    void add(const Section& /*section*/, const ServiceSection& service, const RequestLabel& label) {
        mMarks.requests.push_back({service.beginNs, service.endNs, label.scale});
    }
    void add(const Section& /*section*/, const ServiceSection& service, BoostLabel /*label*/) {
        mMarks.boosts.push_back(service);
    }
    void add(const Section& /*section*/, const ServiceSection& service, ReleaseLabel /*label*/) {
        mMarks.releases.push_back(service);
    }

    LibraryMarks mMarks;
};

}  // namespace

LibraryMarks recordedMarks(trace::LibrarySections& sections, const trace::TraceForm& form) {
    MarkCollector marks;
    for (const trace::LibrarySection& section : sections.take()) {
        const auto thread = form.threads.find(section.tid);
        if (thread != form.threads.end() && trace::isReplayedTrack(thread->second)) continue;
        if (section.pid == form.compositorPid) {
            marks.add(section);
        } else {
            marks.addOtherProcess();
        }
    }
    return marks.take(sections.endsWithoutBegin());
}

}  // namespace brevold::verify
