#include <gtest/gtest.h>
#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "confidential/confidential.h"
#include "crypto/cry.h"
#include "custody/users.h"
#include "store/words.h"
#include "support/sitting.h"

namespace {

constexpr std::string_view kSecret = "a password that nobody may find";
std::atomic<bool> g_watching = false;
std::atomic<int> g_found = 0;

}  // namespace

// Every block of this program that is given back is searched while a test watches.
void* operator new(std::size_t size) {
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* memory) noexcept {
    if (memory != nullptr && g_watching) {
        const std::string_view block(static_cast<const char*>(memory), malloc_usable_size(memory));
        if (block.find(kSecret) != std::string_view::npos) ++g_found;
    }
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}

namespace bmr::store {
namespace {

/// How many blocks with the secret in them `work` gives back.
template <class Work>
int LeftBehind(Work work) {
    g_found = 0;
    g_watching = true;
    work();
    g_watching = false;
    return g_found;
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
