#include <gtest/gtest.h>

#include "custody/keyrecords.h"
#include "custody/lifecycle.h"
#include "custody/openfailure.h"
#include "custody/users.h"
#include "support/failing_disk.h"
#include "support/sitting.h"

// A disk that fails at each of its calls in turn: what is told must be what stands in the file afterwards.
namespace bmr::custody {

using namespace store;
namespace {

namespace fs = std::filesystem;
using test::FailingDisk;
using test::kPassphrase;
using test::Sitting;

const char* const kNewPassphrase = "another Horse 8";

/// Answers any box with OK and always types what it was given, a person who reads all and goes on.
class Reader final : public Prompter {
  public:
    Answer Ask(const Box& box) override {
        boxes.push_back(box);
        return Answer::Ok;
    }
    std::optional<std::string> InputBox(const std::string&, const std::string&, const std::string&) override {
        return std::nullopt;
    }
    bool AskSecret(const PassphraseRequest& request, Secret& typed) override {
        typed = Secret(request.confirm ? kNewPassphrase : current);
        return true;
    }
    std::optional<fs::path> AskOpenFile(const FileRequest&) override { return std::nullopt; }
    std::optional<fs::path> AskSaveFile(const FileRequest&) override { return std::nullopt; }
    void Comment(const std::string&, bool) override {}
    void PauseAfterFailure() override {}

    bool Told(const std::string& words) const {
        for (const Box& box : boxes)
            if (box.text.find(words) != std::string::npos) return true;
        return false;
    }
    std::string current = kPassphrase;
    std::vector<Box> boxes;
};

/// A database that was made and closed by somebody else, under a session of the reader.
struct Case {
    Case() {
        maker.Make();
        maker.Close();
        session.DatabasePath = maker.file;
    }
    void Open() {
        session.DatabasePath = maker.file;
        ASSERT_EQ(OpenDatabaseFile(session), 0);
    }
    /// Whether the closed file opens under a passphrase.
    bool Opens(const std::string& passphrase) {
        Reader other;
        other.current = passphrase;
        Session again({other, maker.clock, maker.random, maker.registry});
        again.DatabasePath = maker.file;
        if (OpenDatabaseFile(again) != 0) return false;
        EXPECT_EQ(CloseDatabase(again), 0);
        return true;
    }
    Sitting maker;
    Reader reader;
    Session session{{reader, maker.clock, maker.random, maker.registry}};
};

TEST(FailingDisk, APassphraseIsChangedExactlyWhenThatIsTold) {
    int changed = 0;
    int doubtful = 0;
    for (const int count : {1, 2, FailingDisk::kForEver}) {
        for (int call = 1;; ++call) {
            Case it;
            it.Open();
            ASSERT_EQ(WritePin(it.session, 1, "4711", 3, true), 0);
            auto change = PassphraseChange::Unverified;
            bool failed = false;
            {
                const FailingDisk disk(call, count);
                change = ChangePassphrase(it.session);
                failed = FailingDisk::Failed();
            }
            if (change == PassphraseChange::Changed) {
                ++changed;
                if (it.reader.Told(kStoredInDoubt)) ++doubtful;
            }
            const PinRecord& pin = it.session.pin;
            const bool own =
                pin.PinKind == 1 && pin.Pin.view() == "4711" && pin.PinApp == 3 && pin.PINeveryaccess;
            EXPECT_EQ(own, change != PassphraseChange::Changed)
                << "call " << call << ": the PIN of the sitting";
            static_cast<void>(CloseDatabase(it.session));
            const bool isNew = it.Opens(kNewPassphrase);
            EXPECT_NE(isNew, it.Opens(kPassphrase)) << "call " << call << ", " << count;
            if (change == PassphraseChange::Unsure)
                EXPECT_GT(count, 1) << "call " << call << ": the file could have been looked at";
            else
                EXPECT_EQ(isNew, change == PassphraseChange::Changed) << "call " << call << ", " << count;
            if (!failed) break;
            ASSERT_LT(call, 100);
        }
    }
    EXPECT_GE(doubtful, 1) << "the last sync fails behind the end";
    EXPECT_GT(changed, doubtful);
}

TEST(FailingDisk, AFailureAtTheCloseIsNotToldAsALossOfWhatWasStored) {
    int failures = 0;
    for (int call = 1;; ++call) {
        Case it;
        it.Open();
        it.session.settings.Idle = 9;
        int error = 0;
        bool failed = false;
        {
            const FailingDisk disk(call);
            error = CloseDatabase(it.session);
            failed = FailingDisk::Failed();
        }
        EXPECT_FALSE(it.session.ProgramDb);
        if (error != 0) {
            ++failures;
            EXPECT_TRUE(it.reader.Told("what was stored in it stands")) << "call " << call;
        }
        it.reader.boxes.clear();
        it.Open();
        EXPECT_EQ(it.session.settings.Idle, error == 0 ? 9 : 5) << "call " << call;
        EXPECT_EQ(CloseDatabase(it.session), 0);
        if (!failed) break;
        ASSERT_LT(call, 100);
    }
    EXPECT_GT(failures, 3);
}

TEST(FailingDisk, ANewDatabaseThatFailedLeavesNoFile) {
    int failures = 0;
    for (int call = 1;; ++call) {
        Sitting sitting;
        Reader reader;
        Session session({reader, sitting.clock, sitting.random, sitting.registry});
        session.DatabasePath = sitting.file;
        session.DefaultPathChosen = true;
        int error = 0;
        bool failed = false;
        {
            const FailingDisk disk(call);
            error = NewDatabase(session);
            failed = FailingDisk::Failed();
        }
        if (error != 0) {
            ++failures;
            EXPECT_FALSE(reader.boxes.empty());
            EXPECT_EQ(fs::directory_iterator(sitting.folder.Path()), fs::directory_iterator())
                << "call " << call;
        } else {
            EXPECT_EQ(CloseDatabase(session), 0);
            session.DatabasePath = sitting.file;
            reader.current = kNewPassphrase;
            EXPECT_EQ(OpenDatabaseFile(session), 0) << "call " << call;
        }
        if (!failed) break;
        ASSERT_LT(call, 200);
    }
    EXPECT_GT(failures, 10);
}

TEST(FailingDisk, ACompactingThatFailedLeavesTheOldFileAndNoCopy) {
    int failures = 0;
    for (int call = 1;; ++call) {
        Case it;
        it.Open();
        int error = 0;
        bool failed = false;
        {
            const FailingDisk disk(call);
            error = RepairAndCompact(it.session);
            failed = FailingDisk::Failed();
        }
        failures += error != 0 ? 1 : 0;
        EXPECT_EQ(it.reader.Told("Database repaired and compacted!"), error == 0) << "call " << call;
        if (it.session.DatabaseOpen) static_cast<void>(CloseDatabase(it.session));
        EXPECT_TRUE(it.Opens(kPassphrase)) << "call " << call;
        EXPECT_FALSE(fs::exists(it.maker.folder.Path() / "test.tmp")) << "call " << call;
        if (!failed) break;
        ASSERT_LT(call, 200);
    }
    EXPECT_GT(failures, 5);
}

}  // namespace
}  // namespace bmr::custody
