#pragma once

#include <string_view>

#include "diary/page.h"
#include "support/store.h"

namespace bmr::diary {

/// A database whose private records are shown.
struct DiaryStore : test::TempStore {
    DiaryStore() { session.ShowPrivate = true; }

    std::int32_t Write(Day day, std::string_view text) {
        Page page;
        page.day = day;
        page.text = text;
        EXPECT_EQ(StorePage(session, page).error, 0);
        return page.key;
    }
    /// A second row for a day, as another program may make it.
    std::int32_t Double(Day day, std::string_view text) {
        std::vector<Page> pages(1);
        pages[0].day = day;
        pages[0].text = text;
        EXPECT_EQ(AddRecords(session, pages), 0);
        return pages[0].key;
    }
    Page Read(Day day) {
        const auto span = ReadSpan(session, day, day);
        EXPECT_TRUE(span);
        return span->pages.at(0);
    }
};

}  // namespace bmr::diary
