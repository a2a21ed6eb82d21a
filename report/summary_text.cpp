#include "report/summary_text.h"

#include <fmt/ostream.h>

#include <utility>

#include "base/text.h"
#include "base/time_units.h"
#include "brevold/protocol.h"
#include "report/labels.h"
#include "report/legend.h"
#include "report/scale_bars.h"

namespace brevold::report {

namespace {

/** With more changes, the refresh rates are shown with their times only. */
constexpr size_t kMaxListedChanges = 3;

/** "1 frame", "2 frames" */
template <typename Count>
std::string counted(Count count, const char* noun) {
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

double toMs(int64_t ns) {
    return toSeconds(ns) * 1e3;
}

class Printer {
  public:
    Printer(const Summary& summary, std::ostream& out, Legend legend)
          : mSummary(summary), mOut(out), mLegend(legend) {}

    void print() {
        printTrace();
        printRequests();
        printFrames();
        printModes();
        printLog();
        if (!mSummary.warnings.empty()) mOut << '\n';
        for (const trace::TraceWarning& warning : mSummary.warnings)
            fmt::print(mOut, "warning: {}\n", warningText(warning));
    }

  private:
    void explain(Block block) {
        if (mLegend == Legend::Shown) mOut << legendOf(block);
    }

    void printTrace() {
        fmt::print(mOut, "trace         {}, {:.2f} s\n", mSummary.trace,
                   toSeconds(mSummary.durationNs));
        if (!mSummary.isWholeTrace()) {
            fmt::print(mOut, "window        {:.2f} s to {:.2f} s\n", toSeconds(mSummary.fromNs),
                       toSeconds(mSummary.toNs));
        }
        printLayers();
        printPace();
        fmt::print(mOut, "refresh rate  {} (from {})\n", ratesText(),
                   periodSourceText(mSummary.periodSource, mSummary.periodCounter));
        fmt::print(mOut, "compositions  {} (from {})\n", mSummary.compositions,
                   compositionSourceText(mSummary.compositionSource));
        fmt::print(mOut, "boost depth   {} ({})\n", boostDepthWord(mSummary.boostDepth),
                   boostDepthText(mSummary.boostDepth));
        fmt::print(mOut, "vsyncs        {} ({}), boost verdicts {}\n", mSummary.vsyncs,
                   vsyncSourceText(mSummary.vsyncSource), mSummary.boostVerdicts);
        if (mSummary.frameVerdicts) {
            fmt::print(mOut,
                       "deadlines     {} frames, {} late, {} dropped (from the frame timeline)\n",
                       mSummary.frameVerdicts->frames, mSummary.frameVerdicts->late,
                       mSummary.frameVerdicts->dropped);
        }
        if (!mSummary.isAnyFeatureOn) {
            mOut << "features      all off, so the library sends no hints; is a --profile "
                    "missing?\n";
        }
        explain(Block::Trace);
    }

    void printLayers() {
        for (const Summary::Focus& focus : mSummary.focuses) {
            const bool isFirst = &focus == mSummary.focuses.data();
            const std::string lead =
                    isFirst ? "layer         "
                            : fmt::format("{:14}then from {:.2f} s ", "", toSeconds(focus.fromNs));
            fmt::print(mOut, "{}{}, {}\n", lead, focus.layer, counted(focus.frames, "frame"));
        }
        if (mSummary.otherLayers != 0) {
            fmt::print(mOut, "{:14}others: {} of {}\n", "", counted(mSummary.otherFrames, "frame"),
                       counted(mSummary.otherLayers, "layer"));
        }
        if (mSummary.passedOverLayer) {
            fmt::print(mOut,
                       "{:14}passed over {}: it has more frames, but is not an application's "
                       "layer\n",
                       "", *mSummary.passedOverLayer);
        }
        if (mSummary.topLayers.size() < 2) return;
        for (const Summary::LayerFrames& layer : mSummary.topLayers) {
            const bool isFirst = &layer == mSummary.topLayers.data();
            fmt::print(mOut, "{:12}{:6}  {}\n", isFirst ? "most frames" : "", layer.frames,
                       layer.layer);
        }
    }

    void printPace() {
        const FrameFigures& figures = mSummary.frameFigures;
        mOut << "frames        ";
        if (figures.intervals != 0) {
            fmt::print(mOut,
                       "{:.1f} per s, interval median {:.1f} ms, 95 % {:.1f} ms, 99 % {:.1f} ms\n"
                       "{:14}",
                       figures.meanRateHz, toMs(figures.medianNs), toMs(figures.p95Ns),
                       toMs(figures.p99Ns), "");
        }
        fmt::print(mOut, "missed refreshes {}, idle {:.2f} s\n", figures.missedRefreshes,
                   toSeconds(figures.idleNs));
    }

    std::string ratesText() const {
        std::string text;
        const size_t changes = mSummary.rates.size() - 1;
        if (changes > kMaxListedChanges) {
            for (const auto& [hz, ns] : mSummary.rateNs)
                text += fmt::format(", {} Hz for {:.2f} s", hz, toSeconds(ns));
            return counted(changes, "change") + text;
        }
        for (const Summary::Rate& rate : mSummary.rates) {
            if (!text.empty()) text += fmt::format(", then from {:.2f} s ", toSeconds(rate.fromNs));
            text += fmt::format("{:.4g} Hz", rate.hz);
        }
        return text;
    }

    void printRequests() {
        mOut << "\nrequest          count   per s     held   share   scale:  5 %    50 %    95 %\n";
        for (const host::HintKind kind : host::kHintKinds)
            printRequest(kind);
        const RequestSummary& down = mSummary.of(host::HintKind::Down);
        if (down.heldNs != 0) {
            fmt::print(mOut, "  mean scale while DOWN holds: {:.3f}\n", down.meanHeldScale);
        }
        if (down.zeroScales != 0) {
            fmt::print(mOut, "  DOWN at scale 0: {}, whose headroom was negative\n",
                       counted(down.zeroScales, "request"));
        }
        explain(Block::Requests);
    }

    void printRequest(host::HintKind kind) {
        const RequestSummary& request = mSummary.of(kind);
        fmt::print(mOut, "  {:<13} {:6}", host::nameOf(kind), request.count);
        if (request.count != 0 && mSummary.windowNs() != 0) {
            fmt::print(mOut, "  {:6.1f}", request.count / toSeconds(mSummary.windowNs()));
        }
        if (host::hasScale(kind) && request.count != 0) {
            fmt::print(mOut, " {:6.2f} s {:5.1f} %", toSeconds(request.heldNs),
                       percentOf(request.heldNs, mSummary.windowNs()));
        }
        if (scaleBinsOf(kind) != nullptr && request.count != 0) {
            fmt::print(mOut, "         {:6.3f}  {:6.3f}  {:6.3f}  {}", request.p05Scale,
                       request.p50Scale, request.p95Scale, scaleBars(request, kind));
        }
        mOut << '\n';
    }

    void printFrames() {
        mOut << "\nframes of the layer                               count   share\n";
        bool isStopped = false;
        for (const replay::FrameOutcome outcome : replay::kFrameOutcomes) {
            const int32_t count = mSummary.of(outcome);
            if (count == 0) continue;
            if (!replay::isRequest(outcome) && !std::exchange(isStopped, true)) {
                mOut << "  no request, because\n";
            }
            fmt::print(mOut, "  {:<45} {:7} {:5.1f} %\n",
                       fmt::format("{}{}", isStopped ? "  " : "", outcomeText(outcome)), count,
                       percentOf(count, mSummary.frames));
        }
        explain(Block::Frames);
    }

    void printModes() {
        mOut << "\nframe-rate mode                 time   share\n";
        if (!mSummary.hasModes) {
            fmt::print(mOut, "  {}\n", replay::kNoModesText);
        }
        for (size_t mode = 0; mode < mSummary.modeNs.size(); ++mode) {
            const int64_t ns = mSummary.modeNs[mode];
            if (ns == 0) continue;
            fmt::print(mOut, "  {}  {:<23} {:6.2f} s {:5.1f} %\n", mode, android::kModeLabels[mode],
                       toSeconds(ns), percentOf(ns, mSummary.windowNs()));
        }
        explain(Block::Modes);
    }

    void printLog() {
        const int32_t windows = mSummary.windowLines;
        const int32_t errors = mSummary.errorLines - windows;
        mOut << "\nlog           ";
        if (errors != 0) {
            fmt::print(mOut, "{}, and {} of a measuring window\n", counted(errors, "error"),
                       counted(windows, "line"));
        } else if (windows != 0) {
            fmt::print(mOut, "nothing wrong: {} at error priority, each for a measuring window\n",
                       counted(windows, "line"));
        } else {
            mOut << "no lines at error priority\n";
        }
        for (const auto& [text, count] : mSummary.errors)
            fmt::print(mOut, "  {} x {}\n", count, text);
        explain(Block::Log);
    }

    const Summary& mSummary;
    std::ostream& mOut;
    const Legend mLegend;
};

}  // namespace

void print(const Summary& summary, std::ostream& out, Legend legend) {
    Printer(summary, out, legend).print();
}

}  // namespace brevold::report
