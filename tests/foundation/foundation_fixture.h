// What the tests of this floor share: a library in its initial state, whose accounts must balance,
// and the diagnostic lines that a piece of code writes.
#pragma once

#include "foundation/orv_collections.h"
#include "foundation/orv_ptr.h"
#include "foundation/orv_string.h"
#include "foundation/orv_test_counters.h"
#include "foundation/wide_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace zelmora::test {

using Owned = OrvPtr<>;
using Lines = std::vector<std::string>;

/// The lines that `work` writes to the standard output, without their prefixes where they have one.
template<typename Work>
Lines linesOf(Work&& work) {
    testing::internal::CaptureStdout();
    work();
    std::fflush(stdout);
    std::istringstream output(testing::internal::GetCapturedStdout());
    Lines lines;
    for (std::string line; std::getline(output, line);) {
        std::string shape = line.substr(0, line.find("] ") + 1);
        std::ranges::replace_if(
            shape, [](char c) { return c >= '0' && c <= '9'; }, '0');
        shape.erase(std::ranges::unique(shape).begin(), shape.end());
        lines.push_back(shape == "0/0/0 0:0:0[0]" ? line.substr(line.find("] ") + 2) : line);
    }
    return lines;
}

inline std::wstring stringOf(const OrvIBase* string) {
    return {OrvStringGetCharacters(string), OrvStringGetLength(string)};
}

inline Owned makeText(std::wstring_view text) {
    return Owned(OrvStringCreateWithCharacters(text.data(), text.size()));
}

/// Initialises the library, opens a pool, and expects that every object dies with them.
class FoundationTest : public testing::Test {
  protected:
    FoundationTest() {
        OrvFoundationInitialize();
        _pool = Owned(OrvTemporaryObjectsPoolCreate());
    }
    ~FoundationTest() override {
        _pool = {};
        OrvFoundationTerminate();
        EXPECT_EQ(OrvLiveObjectCount(), 0);
    }

    void drain() {
        _pool = {};
        _pool = Owned(OrvTemporaryObjectsPoolCreate());
    }

  private:
    Owned _pool;
};

} // namespace zelmora::test
