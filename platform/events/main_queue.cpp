#include "platform/events/main_queue.h"

#include <utility>

namespace zelmora::platform {

MainQueue::MainQueue(std::function<void()> wakeUp) : _wakeUp(std::move(wakeUp)) {}

void MainQueue::async(Block block) {
    {
        const std::lock_guard lock(_mutex);
        _blocks.push_back(std::move(block));
    }
    _wakeUp();
}

bool MainQueue::drain() {
    bool ranAny = false;
    for (;;) {
        Block block;
        {
            const std::lock_guard lock(_mutex);
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
