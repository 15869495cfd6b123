// Every system call that a conversion and a backup make fails in its turn, and every kind of
// failure hits all of them: what is left is whole, what failed is told, the rest is done.

#include "engine/backup_manager.h"
#include "engine/document_controller.h"
#include "engine/settings.h"
#include "engine_fixture.h"
#include "tests/support/system_calls.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <gmock/gmock.h>

namespace zelmora::test {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;

/// The call of this number, 1 being the first, fails with EIO.
class NthCall final : public SystemCallObserver {
  public:
    explicit NthCall(size_t number) : _number(number) {}
    int before(SystemCall&) override { return ++_count == _number ? EIO : 0; }
    [[nodiscard]] bool hasFailed() const { return _count >= _number; }

  private:
    size_t _number;
    size_t _count = 0;
};

/// Runs `round` with its first call failing, with its second, and so on, and at last with none.
void failEachCall(const std::function<void(NthCall&)>& round) {
    for (size_t number = 1; number < 1000; ++number) {
        SCOPED_TRACE("call " + std::to_string(number));
        NthCall nth(number);
        round(nth);
        if (!nth.hasFailed())
            return;
    }
    ADD_FAILURE() << "there is no end";
}

/// Every call of these kinds fails, or passes so many bytes and then fails.
class FaultyDisk final : public SystemCallObserver {
  public:
    FaultyDisk(std::vector<CallKind> kinds, int code, size_t bytes)
        : _kinds(std::move(kinds)), _code(code), _bytes(bytes) {}

    int before(SystemCall& call) override {
        if (!concerns(call))
            return 0;
        call.count = std::min(call.count, _bytes);
        return call.count == 0 ? _code : 0;
    }
    void after(const SystemCall& call, int64_t answer) override {
        if (concerns(call))
            _bytes -= static_cast<size_t>(answer);
    }

  private:
    [[nodiscard]] bool concerns(const SystemCall& call) const {
        return std::find(_kinds.begin(), _kinds.end(), call.kind) != _kinds.end();
    }

    std::vector<CallKind> _kinds;
    int _code;
    size_t _bytes;
};

const Items names = {"a.txt", "b.txt", "c.txt"};

/// One of the texts is so long that it is written in several pieces.
std::string textOf(const std::string& name, const std::string& line) {
    std::string text = line;
    for (int i = 0; i < (name == "b.txt" ? 400'000 : 1); ++i)
        text += line;
    return text;
}
std::string before(const std::string& name) {
    return textOf(name, "\x95\x5c\r\n");
}
std::string after(const std::string& name) {
    return textOf(name, "\xe8\xa1\xa8\n");
}
std::string temporary(std::string name) {
    return name.insert(name.find('.'), "#0");
}

/// Sources in a folder of their own, and what became of them.
class Batch {
  public:
    explicit Batch(const EngineServices& base)
        : services{base.defaults, base.files, base.strings, base.mainLoop, shown} {
        for (const auto& name : names)
            place.writeFile(name, before(name));
    }

    void convert(SystemCallObserver& observer) {
        ZelDocumentController controller(services);
        const ObservedSystemCalls observed(observer);
        for (const auto& name : names)
            controller.doConvertProcess(place / name);
        services.mainLoop.mainQueue().drain();
    }

    /// What the user was told of the file; empty: nothing.
    [[nodiscard]] std::string alertOf(const std::string& name) const {
        for (const auto& alert : shown.alerts) {
            if (alert.informativeText.starts_with(place / name + " "))
                return alert.informativeText;
        }
        return {};
    }

    /// What the source's name and the temporary name hold, in words: "as it was, none".
    [[nodiscard]] std::string stateOf(const std::string& name) const {
        const auto state = [&](const std::string& path) -> std::string {
            const auto text = readFile(place / path);
            return text == "<none>"       ? "none"
                   : text == before(name) ? "as it was"
                   : text == after(name)  ? "converted"
                                          : "torn";
        };
        return state(name) + ", " + state(temporary(name));
    }

    /// Whether what is told as converted is, what is told as failed is as it was or whole under a
    /// temporary name, and nothing else is there.
    void expectNothingLost() const {
        Items allowed;
        for (const auto& name : names) {
            if (alertOf(name).empty())
                EXPECT_EQ(stateOf(name), "converted, none") << name;
            else
                EXPECT_THAT(stateOf(name),
                            AnyOf("as it was, none", "as it was, converted", "none, converted"))
                    << name;
            allowed.insert(allowed.end(), {name, temporary(name)});
        }
        EXPECT_THAT(place.items(), ::testing::IsSubsetOf(allowed));
    }

    TemporaryDirectory place;
    RecordingUserInterface shown;
    EngineServices services;
};

class FaultTest : public EngineTest {
  protected:
    FaultTest() { defaults.setInteger(1, settings::lineBreakCode); }
};

TEST_F(FaultTest, AnyFailingCallOfAConversionCostsNothing) {
    size_t alerts = 0;
    failEachCall([&](NthCall& nth) {
        Batch batch(services());
        batch.convert(nth);
        batch.expectNothingLost();
        EXPECT_LE(batch.shown.alerts.size(), 1U); // the rest of the batch is done
        for (const auto& alert : batch.shown.alerts)
            EXPECT_THAT(alert.informativeText, HasSubstr(std::strerror(EIO)));
        alerts += batch.shown.alerts.size();
    });
    EXPECT_GT(alerts, 3 * names.size()); // calls that can fail were among those that did
}

TEST_F(FaultTest, EveryKindOfFailureIsToldAndCostsNothing) {
    using enum CallKind;
    struct Case {
        std::vector<CallKind> kinds;
        int code;
        const char* left;
        size_t bytes = 0; ///< that are read or written before it
    };
    std::vector<Case> cases = {
        {{open}, EACCES, "as it was, none"},
        {{sync}, EIO, "as it was, none"},
        {{CallKind::close}, EIO, "converted, none"},          // all is on disk by then
        {{link, CallKind::rename}, EROFS, "as it was, none"}, // no name can be given
        {{CallKind::rename}, EIO, "none, converted"},
        {{CallKind::remove}, EPERM, "as it was, converted"},
        {{attribute}, EPERM, "as it was, converted"},
    };
    for (size_t bytes = 0; bytes < before("a.txt").size(); ++bytes)
        cases.push_back({{CallKind::read}, 0, "as it was, none", bytes}); // files end early
    for (size_t bytes = 0; bytes < after("a.txt").size(); ++bytes)
        cases.push_back({{CallKind::write}, ENOSPC, "as it was, none", bytes});
    for (const auto& each : cases) {
        SCOPED_TRACE(std::to_string(&each - cases.data()));
        Batch batch(services());
        FaultyDisk disk(each.kinds, each.code, each.bytes);
        batch.convert(disk);
        batch.expectNothingLost();
        for (const auto& name : names) {
            EXPECT_EQ(batch.stateOf(name), each.left);
            if (each.left != std::string("converted, none")) {
                EXPECT_THAT(batch.alertOf(name),
                            HasSubstr(std::strerror(each.code != 0 ? each.code : EAGAIN)));
            }
        }
    }
}

TEST_F(FaultTest, AnyFailingCallOfABackupLeavesAWholeCopyOrNone) {
    defaults.setBool(true, settings::autoBackup);
    failEachCall([&](NthCall& nth) {
        Batch batch(services());
        const TemporaryDirectory copies;
        defaults.setObject(copies / "new/backup", settings::backupDataDir);
        batch.place.writeFile("sub/d.txt", "d");
        BackupManager manager(batch.services);
        bool isBackedUp = false;
        {
            const ObservedSystemCalls observed(nth);
            isBackedUp = manager.backupPath(batch.place.path());
        }
        const std::string copy =
            "new/backup/" + batch.place.path().substr(batch.place.path().rfind('/') + 1);
        Items whole = {"new/", "new/backup/", copy + "/"};
        for (const auto* name : {"a.txt", "b.txt", "c.txt", "sub/", "sub/d.txt"})
            whole.push_back(copy + "/" + name);
        if (isBackedUp) {
            EXPECT_EQ(copies.items(), whole);
            EXPECT_EQ(readFile(copies / (copy + "/sub/d.txt")), "d");
            EXPECT_EQ(batch.shown.alerts.size(), 0U);
        } else {
            ASSERT_EQ(batch.shown.alerts.size(), 1U);
            EXPECT_THAT(batch.shown.alerts[0].informativeText, HasSubstr(batch.place.path()));
            EXPECT_THAT(batch.shown.alerts[0].informativeText, HasSubstr(std::strerror(EIO)));
            EXPECT_THAT(copies.items(),
                        AnyOf(Items{}, Items{"new/"}, Items{"new/", "new/backup/"}, whole));
        }
        for (const auto& name : names)
            EXPECT_EQ(batch.stateOf(name), "as it was, none");
    });
}

} // namespace
} // namespace zelmora::test
