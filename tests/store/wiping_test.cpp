#include <gtest/gtest.h>
#include "confidential/confidential.h"
#include "crypto/cry.h"
#include "custody/users.h"
#include "store/words.h"
#include "support/freed.h"
#include "support/sitting.h"

namespace bmr::store {
namespace {

constexpr std::string_view kSecret = "a password that nobody may find";

/// How many blocks with the secret in them `work` gives back.
int LeftBehind(const std::function<void()>& work) {
    return test::CountFreed(
        [](const char* block, std::size_t size) {
            return std::string_view(block, size).find(kSecret) != std::string_view::npos;
        },
        work);
}

TEST(Wiping, TheSearchFindsWhatAnOrdinaryTextLeaves) {
    EXPECT_EQ(LeftBehind([] { Bytes copy(kSecret); }), 1);
}

TEST(Wiping, NothingOfAPinStaysInMemoryThatWasGivenBack) {
    test::Sitting sitting;
    sitting.Make();
    int error = 0;
    EXPECT_EQ(LeftBehind([&] { error = custody::WritePin(sitting.session, 1, kSecret, 3, true); }), 0);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(LeftBehind([&] { error = custody::LoadPin(sitting.session); }), 0);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(sitting.session.pin.Pin.view(), kSecret);
    sitting.Close();
}

TEST(Wiping, NothingOfATextThatIsToldTwice) {
    for (const Words& text :
         {Words(kSecret) + " in Łódź \xFF", "a\u0308 Ł\r" + Words(kSecret), Words(kSecret) + " a\u0308"}) {
        EXPECT_EQ(LeftBehind([&text] {
                      ToldWords words = TellWords(text);
                      cry::WipeString(words.told);
                      cry::WipeString(words.companion);
                      EXPECT_FALSE(Needle("北").InTrue(text));
                      EXPECT_FALSE(MeasureWords(text).TooLong());
                  }),
                  0)
            << text;
    }
}

TEST(Wiping, NothingOfAConfidentialRecordEither) {
    test::Sitting sitting;
    sitting.Make();
    confidential::Record record;
    record.kind = 1;
    record.n[0] = "Site";
    record.n[3] = kSecret;
    record.notes = Bytes(5000, 'n') + Bytes(kSecret);
    int error = 0;
    EXPECT_EQ(LeftBehind([&] { error = confidential::WriteRecord(sitting.session, record); }), 0);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(LeftBehind([&] {
                  auto fetched = confidential::FetchRecord(sitting.session, record.key);
                  ASSERT_TRUE(fetched);
                  EXPECT_EQ(fetched->n[3], kSecret);
                  confidential::WipeRecord(*fetched);
              }),
              0);
    sitting.Close();
}

}  // namespace
}  // namespace bmr::store
