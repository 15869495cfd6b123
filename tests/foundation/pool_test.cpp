// Pools.
#include "foundation_fixture.h"

#include "platform/events/run_loop.h"

#include <thread>

namespace zelmora::test {

namespace {

class ObjectTest : public FoundationTest {};

class ManualRunLoop final : public platform::RunLoop {
  public:
    using RunLoop::notify;
    int run() override { return 0; }
    void stop(int) override {}

  private:
    void wakeUp() override {}
};

} // namespace

TEST_F(ObjectTest, PoolsReleaseOnlyTheirOwnAndShareLiterals) {
    const int64_t before = OrvLiveObjectCount();
    const OrvIBase* literal = OrvTemporaryString(L"literal");
    EXPECT_EQ(OrvTemporaryString(std::wstring(L"literal").c_str()), literal);
    EXPECT_NE(OrvTemporaryString(L"other"), literal);
    const OrvIBase* outer = OrvGetCurrentTemporaryObjectsPool();
    {
        const Owned inner(OrvTemporaryObjectsPoolCreate());
        EXPECT_EQ(OrvGetCurrentTemporaryObjectsPool(), inner.get());
        EXPECT_NE(OrvTemporaryString(L"literal"), literal);
        OrvTemporaryObjectsPoolAddObject(OrvStringCreateEmpty());
        EXPECT_EQ(OrvLiveObjectCount(), before + 5);
    }
    EXPECT_EQ(OrvLiveObjectCount(), before + 2);
    EXPECT_EQ(OrvGetCurrentTemporaryObjectsPool(), outer);
    drain();
    EXPECT_EQ(OrvLiveObjectCount(), before);
    EXPECT_EQ(stringOf(OrvTemporaryString(L"literal")), L"literal");
}

TEST_F(ObjectTest, ATemporaryTakesTheMutexOnce) {
    for (int time = 0; time < 2; ++time) { // the literal is new, then known
        const uint64_t before = OrvPoolLockCount();
        (void)OrvTemporaryString(L"literal");
        EXPECT_EQ(OrvPoolLockCount(), before + 1) << time;
    }
}

// With the thread sanitizer this shows that a thread's stack survives the coming and going of
// other threads' entries.
TEST_F(ObjectTest, ThreadsUseTheirPoolsSideBySide) {
    const int64_t before = OrvLiveObjectCount();
    const auto work = [] {
        for (int i = 0; i < 200; ++i) {
            const Owned outer(OrvTemporaryObjectsPoolCreate());
            for (int k = 0; k < 5; ++k) {
                const Owned inner(OrvTemporaryObjectsPoolCreate());
                const OrvIBase* literal = OrvTemporaryString(L"literal");
                EXPECT_EQ(OrvTemporaryString(L"literal"), literal);
                EXPECT_EQ(OrvGetCurrentTemporaryObjectsPool(), inner.get());
            }
            EXPECT_EQ(OrvGetCurrentTemporaryObjectsPool(), outer.get());
        }
    };
    std::thread first(work);
    std::thread second(work);
    work();
    first.join();
    second.join();
    EXPECT_EQ(OrvLiveObjectCount(), before);
}

TEST(LibraryTest, RunLoopDrainsTheInnermostPool) {
    using Activity = platform::RunLoop::Activity;
    ManualRunLoop loop;
    OrvFoundationInitialize();
    const int64_t idle = OrvLiveObjectCount();
    for (const auto activity : {Activity::beforeWaiting, Activity::exit}) {
        OrvTemporaryObjectsPoolAddObject(OrvStringCreateEmpty());
        (void)OrvTemporaryString(L"literal");
        EXPECT_EQ(OrvLiveObjectCount(), idle + 2);
        loop.notify(activity);
        EXPECT_EQ(OrvLiveObjectCount(), idle) << activity;
        // The null object loses no more than the pool's reference.
        EXPECT_EQ(OrvGetRetainCount(OrvGetSharedObject(L"org.zelmora.OrvFoundation.Null")), 1U);
    }
    OrvFoundationTerminate();
}

} // namespace zelmora::test
