#include "custody/viewoptions.h"

#include <gtest/gtest.h>

#include "custody/systemrecord.h"
#include "support/store.h"

namespace bmr::custody {
namespace {

TEST(ViewOptions, AreKeptInTheFileBesideLinesOfOthers) {
    test::TempStore store;
    ASSERT_EQ(WriteSystemRecord(store.session), 0);
    ASSERT_EQ(WriteSystemMemo(store.session, 15, "later.option=a=b\r\nno option\nbudget.page=2\n"), 0);
    ASSERT_EQ(WriteSystemMemo(store.session, 16, "drafts"), 0);
    auto options = ViewOptions::Read(store.session);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->Of("budget.page"), "2");
    EXPECT_EQ(options->Of("later.option"), "a=b");
    EXPECT_EQ(options->Of("budget"), "");  // a name is whole
    EXPECT_EQ(options->Of("budget.balance", "x"), "x");
    options->SetFlag("budget.balance", true);
    options->Set("budget.page", "");
    ASSERT_EQ(options->Write(store.session), 0);
    store.Reopen();
    options = ViewOptions::Read(store.session);
    EXPECT_TRUE(options->Flag("budget.balance"));
    EXPECT_FALSE(options->Flag("budget.page"));
    EXPECT_EQ(ReadSystemMemo(store.session, 15)->view(),
              "later.option=a=b\r\nno option\r\nbudget.balance=1\r\n");
    EXPECT_EQ(ReadSystemMemo(store.session, 16)->view(), "drafts");
    EXPECT_EQ(ReadDatabaseVersion(store.session), 201);
    const auto before = store.Rows();
    ASSERT_EQ(options->Write(store.session), 0);  // nothing has changed
    EXPECT_EQ(store.Rows(), before);
}

TEST(ViewOptions, ARecordThatDoesNotDecodeIsLeftAsItIs) {
    test::TempStore store;
    ASSERT_EQ(WriteSystemRecord(store.session), 0);
    const std::int32_t key = NumberOf(store.Row("SELECT * FROM tt WHERE fSec=1")->Field("fPK"));
    store.Set(key, "fEtx", Bytes("garbage"));
    EXPECT_FALSE(ViewOptions::Read(store.session));
}

}  // namespace
}  // namespace bmr::custody
