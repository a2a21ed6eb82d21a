#include <semaphore.h>

#include "tests/test_device.h"

namespace brevold::test {
namespace {

constexpr size_t kOldSfThread = 0;
constexpr size_t kOldQbThread = 1;
constexpr char kDownHint[] = "hint 4166 19 0x4101f4";
constexpr char kBoostHint[] = "hint 4166 2000 0x122710";

sem_t gHintBegun;
sem_t gHintMayEnd;

class HintUnderWayTest : public DeviceTest {
  protected:
    /** Returns while the service still works on a DOWN request of the "QB" worker. */
    static void startHint() {
        startTargetApp();
        measure(kPeriod60Ns);
        takeCalls();
        sem_init(&gHintBegun, 0, 0);
        sem_init(&gHintMayEnd, 0, 0);
        gDevice.duringHint = [] {
            gDevice.duringHint = nullptr;
            sem_post(&gHintBegun);
            sem_wait(&gHintMayEnd);
        };
        android::energyScaling(0.5f, 1, 0, 1);
        sem_wait(&gHintBegun);
    }

    static Texts endHint() {
        sem_post(&gHintMayEnd);
        return takeCalls();
    }
};

TEST_F(HintUnderWayTest, HoldsUpNobodyWhoPostsNothingToItsWorker) {
    startHint();
    EXPECT_TRUE(brevoldCheck("sf"));
    brevoldRefresh();
    EXPECT_EQ(brevoldMonitor(2, kPeriod60Ns), 0);
    LayerFrameInfo info = {};
    info.layerName = info.peerLayerName = kLayer;
    info.refreshPeriod = kPeriod60Ns;
    EXPECT_EQ(brevoldOnFrameAvailable(&info), 0);
    EXPECT_EQ(brevoldScaling(2, 0), 0);
    EXPECT_EQ(endHint(), (Texts{kDownHint, kBoostHint}));
}

TEST_F(HintUnderWayTest, OutlivesANewInitialisation) {
    startHint();
    android::clearConfigs();
    EXPECT_TRUE(brevoldInit());
    EXPECT_EQ(endHint(), Texts{kDownHint});
    takeLogTexts();
    host::wakeSpuriously(kOldSfThread);
    host::wakeSpuriously(kOldQbThread);
    EXPECT_EQ(takeCalls(), Texts{kDownHint});
    EXPECT_EQ(takeLogTexts(), Texts{"mPerfHint is null."});
    android::energyScaling(10.0f, 2, 2, 0);
    EXPECT_EQ(takeCalls(), Texts{kBoostHint});
}

}  // namespace
}  // namespace brevold::test
