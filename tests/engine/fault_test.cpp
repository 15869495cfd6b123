// Every system call that a conversion, a backup and a log line make fails in its turn, and every
// kind of failure hits all of them: what is left is whole, what failed is told, the rest is done.

#include "engine/backup_manager.h"
#include "engine/conversion_log.h"
#include "engine/document_controller.h"
#include "engine/settings.h"
#include "engine_fixture.h"
#include "tests/support/system_calls.h"

#include <cerrno>
#include <cstring>
#include <functional>
#include <gmock/gmock.h>
#include <optional>

namespace zelmora::test {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;

/// The call of this number, 1 being the first, fails with EIO.
class NthCall final : public SystemCallObserver {
  public:
    explicit NthCall(size_t number) : _number(number) {}
    int before(SystemCall& call) override {
        if (++_count != _number)
            return 0;
        _failed = call.function;
        return EIO;
    }
    /// The call that failed; null: there were not so many.
    [[nodiscard]] const char* failed() const { return _failed; }

  private:
    size_t _number;
    size_t _count = 0;
    const char* _failed = nullptr;
};

enum class Fault {
    openRefused,
    readCutShort, ///< a file ends after so many bytes, whatever its length
    diskFull,     ///< after so many bytes
    syncFails,
    closeFails,
    linkFails,
    renameFails,
    deleteRefused,
    attributeRefused,
};

/// Every call that a fault is about fails.
class FaultSwitch final : public SystemCallObserver {
  public:
    explicit FaultSwitch(Fault fault, size_t bytes = 0) : _fault(fault), _bytes(bytes) {}

    int before(SystemCall& call) override {
        switch (_fault) {
        case Fault::openRefused:
            return call.kind == CallKind::open ? EACCES : 0;
        case Fault::readCutShort:
            if (call.kind == CallKind::read)
                call.count = std::min(call.count, _bytes);
            return 0;
        case Fault::diskFull:
            if (call.kind == CallKind::write)
                call.count = std::min(call.count, _bytes);
            return call.kind == CallKind::write && call.count == 0 ? ENOSPC : 0;
        case Fault::syncFails:
            return call.kind == CallKind::sync ? EIO : 0;
        case Fault::closeFails:
            return call.kind == CallKind::close ? EIO : 0;
        case Fault::linkFails: // no name can be given, by whatever call
            return call.kind == CallKind::link || call.kind == CallKind::rename ? EROFS : 0;
        case Fault::renameFails:
            return call.kind == CallKind::rename ? EIO : 0;
        case Fault::deleteRefused:
            return call.kind == CallKind::remove ? EPERM : 0;
        case Fault::attributeRefused:
            return call.kind == CallKind::attribute ? EPERM : 0;
        }
        return 0;
    }

    void after(const SystemCall& call, int64_t answer) override {
        if ((_fault == Fault::readCutShort && call.kind == CallKind::read) ||
            (_fault == Fault::diskFull && call.kind == CallKind::write))
            _bytes -= static_cast<size_t>(answer);
    }

  private:
    Fault _fault;
    size_t _bytes;
};

const Items names = {"a.txt", "b.txt", "c.txt"};

/// One of the texts is so long that it is written in several pieces, by a thread of its own.
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
/// What a file holds, in a word: texts this long are not to be printed.
std::string stateOf(const std::string& path, const std::string& name) {
    const auto text = readFile(path);
    return text == "<none>"       ? "none"
           : text == before(name) ? "as it was"
           : text == after(name)  ? "converted"
                                  : "torn";
}

std::string temporary(std::string name) {
    return name.insert(name.find('.'), "#0");
}

/// Sources in a folder of their own, and what became of them.
class Batch {
  public:
    explicit Batch(const EngineServices& services)
        : _services(services.defaults, services.files, services.strings, services.mainLoop, shown) {
        for (const auto& name : names)
            place.writeFile(name, before(name));
    }

    void convert(SystemCallObserver& observer) {
        ZelDocumentController controller(_services);
        const ObservedSystemCalls observed(observer);
        for (const auto& name : names)
            controller.doConvertProcess(place / name);
        _services.mainLoop.mainQueue().drain();
    }

    /// What the user was told of the file.
    [[nodiscard]] std::optional<std::string> alertOf(const std::string& name) const {
        for (const auto& alert : shown.alerts) {
            if (alert.informativeText.starts_with(place / name + " "))
                return alert.informativeText;
        }
        return std::nullopt;
    }

    /// Whether nothing but the sources and their temporary names is there, and both are whole: what
    /// is told as converted is, what is told as failed is as it was or whole under a temporary
    /// name.
    void expectNothingLost() const {
        Items allowed;
        for (const auto& name : names) {
            const auto both =
                stateOf(place / name, name) + ", " + stateOf(place / temporary(name), name);
            if (!alertOf(name))
                EXPECT_EQ(both, "converted, none") << name;
            else
                EXPECT_THAT(both,
                            AnyOf("as it was, none", "as it was, converted", "none, converted"))
                    << name;
            allowed.insert(allowed.end(), {name, temporary(name)});
        }
        for (const auto& item : place.items())
            EXPECT_NE(std::find(allowed.begin(), allowed.end(), item), allowed.end()) << item;
    }

    TemporaryDirectory place;
    RecordingUserInterface shown;

  private:
    EngineServices _services;
};

class FaultTest : public EngineTest {
  protected:
    FaultTest() { defaults.setInteger(1, settings::lineBreakCode); }
    [[nodiscard]] EngineServices direct() {
        auto& disk = platform::FileManager::defaultManager();
        return {defaults, disk, strings, mainLoop, userInterface};
    }
};

TEST_F(FaultTest, AnyFailingCallOfAConversionCostsNothing) {
    size_t alerts = 0;
    for (size_t number = 1;; ++number) {
        Batch batch(direct());
        NthCall nth(number);
        batch.convert(nth);
        SCOPED_TRACE(std::to_string(number) + " " + (nth.failed() ? nth.failed() : "nothing"));
        batch.expectNothingLost();
        EXPECT_LE(batch.shown.alerts.size(), 1U); // the rest of the batch is done
        for (const auto& alert : batch.shown.alerts)
            EXPECT_THAT(alert.informativeText, HasSubstr(std::strerror(EIO)));
        alerts += batch.shown.alerts.size();
        if (nth.failed() == nullptr)
            break;
        ASSERT_LT(number, 1000U);
    }
    EXPECT_GT(alerts, 3 * names.size()); // calls that can fail were among those that did
}

TEST_F(FaultTest, EveryKindOfFailureIsToldAndCostsNothing) {
    enum Left { source, converted, both, temporaryOnly };
    struct Case {
        const char* what;
        Fault fault;
        size_t bytes;
        Left left;
        int code; ///< of the reason that the user is told
    };
    std::vector<Case> cases = {
        {"open refused", Fault::openRefused, 0, source, EACCES},
        {"sync fails", Fault::syncFails, 0, source, EIO},
        {"close fails", Fault::closeFails, 0, converted, 0}, // all is on disk by then
        {"no name can be given", Fault::linkFails, 0, source, EROFS},
        {"rename fails", Fault::renameFails, 0, temporaryOnly, EIO},
        {"delete refused", Fault::deleteRefused, 0, both, EPERM},
        {"attribute refused", Fault::attributeRefused, 0, both, EPERM},
    };
    for (size_t bytes = 0; bytes < before("a.txt").size(); ++bytes)
        cases.push_back({"read cut short", Fault::readCutShort, bytes, source, EAGAIN});
    for (size_t bytes = 0; bytes < after("a.txt").size(); ++bytes)
        cases.push_back({"disk full", Fault::diskFull, bytes, source, ENOSPC});
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what + std::string(" ") + std::to_string(each.bytes));
        Batch batch(direct());
        FaultSwitch fault(each.fault, each.bytes);
        batch.convert(fault);
        batch.expectNothingLost();
        for (const auto& name : names) {
            EXPECT_EQ(batch.alertOf(name).has_value(), each.left != converted);
            EXPECT_THAT(batch.alertOf(name).value_or(""),
                        HasSubstr(each.code == 0 ? "" : std::strerror(each.code)));
            EXPECT_EQ(stateOf(batch.place / name, name), each.left == converted ? "converted"
                                                         : each.left == temporaryOnly
                                                             ? "none"
                                                             : "as it was");
            EXPECT_EQ(stateOf(batch.place / temporary(name), name),
                      each.left == both || each.left == temporaryOnly ? "converted" : "none");
        }
    }
}

TEST_F(FaultTest, AnyFailingCallOfABackupLeavesAWholeCopyOrNone) {
    defaults.setBool(true, settings::autoBackup);
    for (size_t number = 1;; ++number) {
        Batch batch(direct());
        const TemporaryDirectory copies;
        defaults.setObject(copies / "new/backup", settings::backupDataDir);
        batch.place.writeFile("sub/d.txt", "d");
        EngineServices services{defaults, direct().files, strings, mainLoop, batch.shown};
        BackupManager manager(services);
        NthCall nth(number);
        bool isBackedUp = false;
        {
            const ObservedSystemCalls observed(nth);
            isBackedUp = manager.backupPath(batch.place.path());
        }
        SCOPED_TRACE(std::to_string(number) + " " + (nth.failed() ? nth.failed() : "nothing"));
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
            EXPECT_EQ(stateOf(batch.place / name, name), "as it was");
        if (nth.failed() == nullptr)
            break;
        ASSERT_LT(number, 1000U);
    }
}

TEST_F(FaultTest, AnyFailingCallOfALogLineLeavesTheLinesBefore) {
    defaults.setBool(true, settings::createLogFile);
    for (const bool isNew : {false, true}) {
        for (size_t number = 1;; ++number) {
            const TemporaryDirectory place;
            const std::string old = isNew ? "" : "an old line\n";
            if (!isNew)
                place.writeFile("log", old);
            defaults.setObject(place / "log", settings::logFilePath);
            ZelLog log(direct());
            NthCall nth(number);
            {
                const ObservedSystemCalls observed(nth);
                log.logWithAction("Action", true, "detail");
            }
            SCOPED_TRACE(std::to_string(number) + " " + (nth.failed() ? nth.failed() : "nothing"));
            const auto text = readFile(place / "log");
            const bool isWritten =
                text.ends_with(" Action Success detail\n") && text.starts_with(old);
            EXPECT_TRUE(isWritten || text == (isNew ? "<none>" : old)) << text;
            EXPECT_THAT(place.items(), AnyOf(Items{}, Items{"log"}));
            if (nth.failed() == nullptr) {
                EXPECT_TRUE(isWritten);
                break;
            }
            ASSERT_LT(number, 1000U);
        }
    }
}

} // namespace
} // namespace zelmora::test
