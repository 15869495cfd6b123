#include "platform/events/run_loop.h"

#include <gtest/gtest.h>
#include <string>

namespace zelmora::platform {
namespace {

/// A loop whose activities the test decides.
class HandDrivenLoop : public RunLoop {
  public:
    int run() override { return 0; }
    void stop(int) override {}
    using RunLoop::notify;
    int wakeUps = 0;

  protected:
    void wakeUp() override { ++wakeUps; }
};

TEST(RunLoop, TellsObserversOnlyWhatTheyAskedForInTheirOrder) {
    HandDrivenLoop loop;
    std::string heard;
    const auto hearsBoth =
        loop.addObserver(RunLoop::beforeWaiting | RunLoop::exit, [&](RunLoop::Activity each) {
            heard += each == RunLoop::exit ? "E" : "W";
        });
    loop.addObserver(RunLoop::beforeWaiting, [&](RunLoop::Activity) { heard += "w"; });
    loop.addObserver(RunLoop::exit, [&](RunLoop::Activity) { heard += "e"; });
    loop.notify(RunLoop::beforeWaiting);
    loop.notify(RunLoop::exit);
    EXPECT_EQ(heard, "WwEe");

    loop.removeObserver(hearsBoth);
    loop.removeObserver(hearsBoth);
    loop.notify(RunLoop::beforeWaiting);
    EXPECT_EQ(heard, "WwEew");
}

TEST(RunLoop, LetsAnObserverAddAndRemoveObservers) {
    HandDrivenLoop loop;
    std::string heard;
    RunLoop::ObserverID removed = 0;
    loop.addObserver(RunLoop::exit, [&](RunLoop::Activity) {
        heard += "1";
        loop.removeObserver(removed);
        loop.addObserver(RunLoop::exit, [&](RunLoop::Activity) { heard += "3"; });
    });
    removed = loop.addObserver(RunLoop::exit, [&](RunLoop::Activity) { heard += "2"; });
    loop.notify(RunLoop::exit);
    EXPECT_EQ(heard, "1") << "a removed observer, or one added meanwhile, was told";
    loop.notify(RunLoop::exit);
    EXPECT_EQ(heard, "113");
}

TEST(RunLoop, TheMainOneIsTheLastThatLives) {
    EXPECT_EQ(RunLoop::mainRunLoop(), nullptr);
    {
        HandDrivenLoop outer;
        {
            HandDrivenLoop inner;
            EXPECT_EQ(RunLoop::mainRunLoop(), &inner);
        }
        EXPECT_EQ(RunLoop::mainRunLoop(), &outer);
        outer.mainQueue().async([] {});
        EXPECT_EQ(outer.wakeUps, 1) << "what is put on the queue must wake the loop";
    }
    EXPECT_EQ(RunLoop::mainRunLoop(), nullptr);
}

} // namespace
} // namespace zelmora::platform
