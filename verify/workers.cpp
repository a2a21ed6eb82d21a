#include "verify/workers.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace brevold::verify {

namespace {

/** Half of the last decimal of a request's scale, and the rounding of the decision's. */
constexpr double kScaleRounding = 0.005001;
constexpr int64_t kMaxRequestDelayNs = 1'000'000'000;

/** Returns true if a request may have the scale of a decision. Both are rounded in labels. */
bool isScaleOf(double request, double decision) {
    if (!std::isfinite(request) || !std::isfinite(decision)) {
        return std::isnan(request) ? std::isnan(decision) : request == decision;
    }
    return std::abs(request - decision) <= kScaleRounding;
}

/** Returns true if one of the latest decisions before a request has its scale. */
bool isDecided(const std::vector<const DecisionMark*>& posted, const ServiceSection& request) {
    auto decision = std::upper_bound(
            posted.begin(), posted.end(), request.beginNs,
            [](int64_t timeNs, const DecisionMark* mark) { return timeNs < mark->timeNs; });
    while (decision != posted.begin()) {
        --decision;
        if ((*decision)->timeNs < request.beginNs - kMaxRequestDelayNs) return false;
        if (isScaleOf(request.scale, (*decision)->label.scale)) return true;
    }
    return false;
}

/**
 * Assigns requests to the decisions that post them. A newer decision replaces one that has not been
 * sent; the scale in a request shows which one it is for. Returns the times from the first decision
 * that waits to the section that sends its or a newer request.
 */
std::vector<Latency> checkRequests(const std::vector<const DecisionMark*>& posted,
                                   const std::vector<ServiceSection>& requests,
                                   const WorkerContext& context, Differences* differences) {
    std::vector<Latency> waits;
    auto waiting = posted.begin();
    for (const ServiceSection& request : requests) {
        auto sent = std::find_if(waiting, posted.end(), [&](const DecisionMark* decision) {
            return decision->timeNs > request.beginNs;
        });
        while (sent != waiting && !isScaleOf(request.scale, (*std::prev(sent))->label.scale))
            --sent;
        if (sent == waiting) {
            // The decision may be before the trace. A request that is off has another cause.
            const bool isChecked = request.beginNs > context.traceStartNs + context.periodNs &&
                                   (context.sendsDown || request.scale > 1 + kScaleRounding);
            if (isChecked && !isDecided(posted, request)) {
                differences->add(Subject::Request, request.beginNs, Cause::RequestUndecided);
            }
            continue;
        }
        waits.push_back({(*waiting)->timeNs, request.beginNs - (*waiting)->timeNs});
        for (; waiting != sent; ++waiting) {
            const int64_t postedNs = (*waiting)->timeNs;
            if (request.beginNs - postedNs > context.periodNs) {
                differences->add(Subject::Request, postedNs, Cause::RequestLate);
            } else {
                differences->addAgreement(Subject::Request, postedNs);
            }
        }
    }
    // A request in the last period may be sent after the trace.
    for (; waiting != posted.end() && (*waiting)->timeNs < context.traceEndNs - context.periodNs;
         ++waiting) {
        differences->add(Subject::Request, (*waiting)->timeNs, Cause::RequestNotSent);
    }
    return waits;
}

/** DOWN requests have scales of at most 1, UP requests have larger ones; labels round both. */
bool isSurelyDown(double scale) {
    return scale < 1 - kScaleRounding;
}

/** Checks that DOWN requests are on or off as expected. Returns true if their workers send them. */
bool checkDownRequests(const LibraryMarks& marks, const WorkerContext& context,
                       Differences* differences) {
    std::vector<int64_t> decidedNs;
    for (const DecisionMark& decision : marks.decisions) {
        const bool isDue = decision.timeNs < context.traceEndNs - context.periodNs;
        if (isDue && isSurelyDown(decision.label.scale)) decidedNs.push_back(decision.timeNs);
    }
    std::vector<int64_t> sentNs;
    for (const ServiceSection& request : marks.requests) {
        if (isSurelyDown(request.scale)) sentNs.push_back(request.beginNs);
    }
    if (context.sendsDown && sentNs.empty()) {
        CauseSet causes = Cause::DownOff;
        if (marks.requests.empty()) causes.add(Cause::RequestNotSent);
        for (const int64_t timeNs : decidedNs)
            differences->add(Subject::Request, timeNs, causes);
    }
    if (!context.sendsDown) {
        for (const int64_t timeNs : sentNs)
            differences->add(Subject::Request, timeNs, Cause::DownOn);
    }
    return context.sendsDown && (!sentNs.empty() || decidedNs.empty());
}

/** Returns the times from boosts to their releases. */
std::vector<Latency> checkReleases(const LibraryMarks& marks, const WorkerContext& context,
                                   Differences* differences) {
    std::vector<Latency> holds;
    auto release = marks.releases.begin();
    for (auto boost = marks.boosts.begin(); boost != marks.boosts.end(); ++boost) {
        const auto next = std::next(boost);
        const bool hasNext = next != marks.boosts.end();
        release = std::find_if(release, marks.releases.end(), [&](const ServiceSection& section) {
            return section.beginNs >= boost->beginNs;
        });
        if (release != marks.releases.end() && (!hasNext || release->beginNs <= next->beginNs)) {
            holds.push_back({boost->beginNs, release->beginNs - boost->beginNs});
            differences->addAgreement(Subject::Release, boost->beginNs);
            ++release;
            continue;
        }
        // The next composition releases a boost. The trace may end before.
        const auto tick = std::upper_bound(context.compositionsNs.begin(),
                                           context.compositionsNs.end(), boost->beginNs);
        const bool isDue = tick != context.compositionsNs.end() &&
                           *tick + context.periodNs <= context.traceEndNs;
        if (isDue) differences->add(Subject::Release, boost->beginNs, Cause::BoostNotReleased);
    }
    return holds;
}

std::vector<Latency> lengthsOf(const std::vector<ServiceSection>& sections) {
    std::vector<Latency> lengths;
    for (const ServiceSection& section : sections)
        lengths.push_back({section.beginNs, section.endNs - section.beginNs});
    return lengths;
}

/** A decision in a section of the worker may wait until its end. */
std::vector<Latency> reporterWaits(const std::vector<const DecisionMark*>& posted,
                                   const std::vector<ServiceSection>& requests) {
    std::vector<Latency> waits;
    auto request = requests.begin();
    for (const DecisionMark* decision : posted) {
        request = std::find_if(request, requests.end(), [&](const ServiceSection& section) {
            return section.endNs > decision->timeNs;
        });
        if (request == requests.end()) break;
        if (request->beginNs < decision->timeNs) {
            waits.push_back({decision->timeNs, request->endNs - decision->timeNs});
        }
    }
    return waits;
}

}  // namespace

Latencies checkWorkers(const LibraryMarks& marks, const WorkerContext& context,
                       Differences* differences) {
    const bool hasDown = checkDownRequests(marks, context, differences);
    std::vector<const DecisionMark*> posted;
    for (const DecisionMark& decision : marks.decisions) {
        const bool isUp = decision.label.direction == Direction::Up;
        if (isUp || hasDown) posted.push_back(&decision);
    }
    Latencies latencies;
    const auto set = [&](LatencyKind kind, std::vector<Latency> values) {
        latencies[static_cast<size_t>(kind)] = summarise(std::move(values));
    };
    set(LatencyKind::HandOver, checkRequests(posted, marks.requests, context, differences));
    set(LatencyKind::RequestCall, lengthsOf(marks.requests));
    set(LatencyKind::BoostCall, lengthsOf(marks.boosts));
    set(LatencyKind::ReleaseCall, lengthsOf(marks.releases));
    set(LatencyKind::BoostHold, checkReleases(marks, context, differences));
    set(LatencyKind::ReporterWait, reporterWaits(posted, marks.requests));
    return latencies;
}

}  // namespace brevold::verify
