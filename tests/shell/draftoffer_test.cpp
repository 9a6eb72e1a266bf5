#include "shell/draftoffer.h"

#include "shell/navigator.h"
#include "support/store.h"

namespace bmr::shell {
namespace {

using custody::DraftBase;
using store::Section;

bool Has(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

TEST(DraftOffer, FirstWords) {
    EXPECT_EQ(FirstWords("", 10), "");
    EXPECT_EQ(FirstWords("  one\r\n\ttwo  ", 10), "one two");
    EXPECT_EQ(FirstWords("one two", 7), "one two");
    EXPECT_EQ(FirstWords("one two three", 9), "one two \xE2\x80\xA6");
    EXPECT_EQ(FirstWords("one two", 3), "one \xE2\x80\xA6");
    EXPECT_EQ(FirstWords("\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F", 3), "\xC3\xA4\xC3\xB6\xC3\xBC\xE2\x80\xA6");
}

TEST(DraftOffer, ShowsTheWordsOnlyWhereTheListWouldShowThem) {
    test::TestSession sitting;
    custody::Draft draft;
    draft.section = Section::Memo;
    draft.isPrivate = false;
    draft.when = {46347.0 + 9.0 / 24 + 5.0 / 1440};
    draft.title = Secret("Garden plan");
    const auto text = [&](DraftBase base = DraftBase::New) {
        return DraftOffer(sitting.session, draft, base, "Memo Pad", {.shortDate = "dd.MM.yyyy"}).text;
    };
    EXPECT_TRUE(Has(text(), "On 21.11.2026 at 09:05 ")) << text();
    EXPECT_TRUE(Has(text(), "in Memo Pad."));
    EXPECT_TRUE(Has(text(), "Garden plan"));
    EXPECT_FALSE(Has(text(), "private"));

    sitting.session.pin.PinApp = static_cast<std::int32_t>(SectionBit(Section::Memo));
    EXPECT_FALSE(Has(text(), "Garden"));
    sitting.session.PinPassed = sitting.session.pin.PinApp;
    EXPECT_TRUE(Has(text(), "Garden"));

    draft.isPrivate = true;
    EXPECT_FALSE(Has(text(), "Garden"));
    EXPECT_TRUE(Has(text(), "the passphrase is asked"));
    sitting.session.ShowPrivate = true;
    EXPECT_FALSE(Has(text(), "Garden")) << "who looks on at the login need not see it";
    EXPECT_FALSE(Has(text(), "passphrase"));

    EXPECT_FALSE(Has(text(), "missing"));
    draft.cut = true;
    EXPECT_TRUE(Has(text(), "missing"));
    EXPECT_TRUE(Has(text(DraftBase::Gone), "deleted"));
    EXPECT_TRUE(Has(text(DraftBase::Changed), "changed"));
    EXPECT_FALSE(Has(text(DraftBase::Same), "since then"));
}

}  // namespace
}  // namespace bmr::shell
