#include "sim/sweep.h"

namespace brevold::sim {

const Words<Sweep> kSweepWords = {{"service", Sweep::Service},
                                  {"governor", Sweep::Governor},
                                  {"buffers", Sweep::Buffers},
                                  {"boost-depth", Sweep::BoostDepth}};

std::vector<Setup> sweepSetups(const Setup& setup, Sweep sweep) {
    const Reading& reading = setup.readings.front();
    Setup readings = setup;
    readings.readings.clear();
    std::vector<Setup> setups;
    switch (sweep) {
        case Sweep::Service:
            for (const auto& [downWord, down] : kDownWords) {
                for (const auto& [boostWord, boost] : kBoostWords) {
                    Reading& added = readings.readings.emplace_back(reading);
                    added.service.down = down;
                    added.service.boost = boost;
                }
            }
            return {readings};
        case Sweep::BoostDepth:
            for (const BoostDepth depth : {BoostDepth::Left, BoostDepth::Found})
                readings.readings.push_back({reading.service, depth});
            return {readings};
        case Sweep::Governor:
            for (const auto& [word, governor] : kGovernorWords) {
                // This is the governor performance.
                if (governor == GovernorKind::Fixed && setup.device.governor.fixedShare == 1.0) {
                    continue;
                }
                setups.emplace_back(setup).device.governor.kind = governor;
            }
            break;
        case Sweep::Buffers:
            for (const int32_t buffers : {2, 3, 4})
                setups.emplace_back(setup).device.buffers = buffers;
            break;
    }
    return setups;
}

}  // namespace brevold::sim
