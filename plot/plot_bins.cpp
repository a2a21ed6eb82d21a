#include "plot/plot_bins.h"

#include <algorithm>
#include <cmath>

namespace brevold::plot {

namespace {

struct Sample {
    double value;
    double weight;
};

class Binner {
  public:
    explicit Binner(const BinGrid& grid) : mGrid(grid), mSamples(static_cast<size_t>(grid.count)) {}

    int32_t indexOf(double timeS) const {
        const double index = std::floor((timeS - mGrid.beginS) / mGrid.widthS());
        return static_cast<int32_t>(std::clamp(index, 0.0, mGrid.count - 1.0));
    }
    double startOf(int32_t index) const { return mGrid.beginS + index * mGrid.widthS(); }

    void add(int32_t index, const Sample& sample) {
        if (sample.weight > 0) mSamples[static_cast<size_t>(index)].push_back(sample);
    }

    std::vector<Bin> bins() {
        std::vector<Bin> bins;
        for (int32_t index = 0; index < mGrid.count; ++index) {
            std::vector<Sample>& samples = mSamples[static_cast<size_t>(index)];
            if (!samples.empty()) bins.push_back(binOf(index, &samples));
        }
        return bins;
    }

  private:
    Bin binOf(int32_t index, std::vector<Sample>* samples) const {
        // Stable, because the sum depends on the order.
        std::stable_sort(samples->begin(), samples->end(),
                         [](const Sample& a, const Sample& b) { return a.value < b.value; });
        double weight = 0;
        double sum = 0;
        for (const Sample& sample : *samples) {
            weight += sample.weight;
            sum += sample.weight * sample.value;
        }
        const auto percentile = [&](double share) {
            double passed = 0;
            for (const Sample& sample : *samples) {
                passed += sample.weight;
                if (passed >= share * weight) return sample.value;
            }
            return samples->back().value;
        };
        return {startOf(index),        startOf(index + 1), samples->front().value,
                percentile(0.05),      percentile(0.5),    percentile(0.95),
                samples->back().value, sum / weight,       weight};
    }

    const BinGrid mGrid;
    std::vector<std::vector<Sample>> mSamples;
};

}  // namespace

std::vector<Bin> binPoints(const PlotPoints& points, const BinGrid& grid) {
    Binner binner(grid);
    for (const PlotPoint& point : points)
        binner.add(binner.indexOf(point.timeS), {point.value, 1});
    return binner.bins();
}

std::vector<Bin> binSpans(const PlotSpans& spans, const BinGrid& grid) {
    Binner binner(grid);
    for (const PlotSpan& span : spans) {
        const int32_t last = binner.indexOf(span.toS);
        double fromS = span.fromS;
        for (int32_t index = binner.indexOf(fromS); index <= last; ++index) {
            const double toS = index == last ? span.toS : binner.startOf(index + 1);
            binner.add(index, {span.value, toS - fromS});
            fromS = toS;
        }
    }
    return binner.bins();
}

}  // namespace brevold::plot
