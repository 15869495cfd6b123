#include "platform/events/main_queue.h"

#include <utility>

namespace zelmora::platform {

MainQueue::MainQueue(std::function<void()> wakeUp, std::function<void()> wakeUpLater)
    : _wakeUp(std::move(wakeUp)), _wakeUpLater(std::move(wakeUpLater)) {}

void MainQueue::async(Block block) {
    add(std::move(block));
    _wakeUp();
}

void MainQueue::asyncLater(Block block) {
    add(std::move(block));
    _wakeUpLater();
}

void MainQueue::add(Block block) {
    const MutexLock lock(_mutex);
    _blocks.push_back(std::move(block));
}

bool MainQueue::drain() {
    bool ranAny = false;
    for (;;) {
        Block block;
        {
            const MutexLock lock(_mutex);
            if (_blocks.empty())
                return ranAny;
            block = std::move(_blocks.front());
            _blocks.pop_front();
        }
        block();
        ranAny = true;
    }
}

} // namespace zelmora::platform
