// The test program's operator new: it can be told to fail once.
#pragma once

namespace zelmora::test {

/// While it lives, the `number`th allocation of this thread (from 1) fails; the others succeed.
class FailingAllocation {
  public:
    explicit FailingAllocation(int number);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// Whether an allocation has failed.
    [[nodiscard]] bool hasFailed() const;
};

} // namespace zelmora::test
