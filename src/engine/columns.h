#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace bmr::engine {

/// The columns of `tt`, in order: the description that makes a new file and that a file is tested against.
inline constexpr std::size_t kColumnCount = 17;

inline constexpr std::array<std::string_view, kColumnCount> ColumnNames{
    "fPK", "fEtx", "fSec", "fSub", "fR1", "fR2", "fR3", "fR4", "fR5",
    "fF1", "fF2",  "fF3",  "fT1",  "fT2", "fT3", "fG1", "AE"};

/// Type numbers of the columns: the width of a number is tested before it is written.
struct ColumnType {
    static constexpr int Boolean = 1;
    static constexpr int Byte = 2;
    static constexpr int Int16 = 3;
    static constexpr int Int32 = 4;
    static constexpr int Text = 10;
    static constexpr int Memo = 12;
};
inline constexpr std::array<int, kColumnCount> ColumnTypes{4, 12, 2, 2,  4,  4,  4, 4, 4,
                                                           1, 1,  1, 10, 10, 10, 3, 3};

/// What a new row starts with. A text is "0" in the first two text columns and nothing in the third.
inline constexpr std::array<std::optional<std::string_view>, kColumnCount> ColumnDefaults{
    "GenUniqueID()", std::nullopt, "0",         "0", "0", "0", "0", "0", "0", "0", "0", "0", "0", "0",
    std::nullopt,    std::nullopt, std::nullopt};

/// 16 marks the column whose value is drawn by the store.
inline constexpr std::array<std::optional<int>, kColumnCount> ColumnAttributes{16,
                                                                               std::nullopt,
                                                                               std::nullopt,
                                                                               std::nullopt,
                                                                               std::nullopt,
                                                                               std::nullopt,
                                                                               std::nullopt,
                                                                               std::nullopt,
                                                                               std::nullopt,
                                                                               std::nullopt,
                                                                               std::nullopt,
                                                                               std::nullopt,
                                                                               std::nullopt,
                                                                               std::nullopt,
                                                                               std::nullopt,
                                                                               0,
                                                                               0};

/// The eight indexes, none of them primary or unique.
struct IndexDescription {
    std::string_view name;
    std::string_view column;
};
inline constexpr std::array<IndexDescription, 8> kIndexes{{{"PrimaryKey", "fPK"},
                                                           {"fSec", "fSec"},
                                                           {"fSub", "fSub"},
                                                           {"fR1", "fR1"},
                                                           {"fR2", "fR2"},
                                                           {"fR3", "fR3"},
                                                           {"fR4", "fR4"},
                                                           {"fR5", "fR5"}}};

/// Same name without regard to case, letters of ASCII only.
constexpr bool SameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
        if (lower(a[i]) != lower(b[i])) return false;
    }
    return true;
}

/// Place of a column of `tt`.
constexpr std::optional<std::size_t> ColumnIndex(std::string_view name) {
    for (std::size_t i = 0; i < kColumnCount; ++i)
        if (SameName(ColumnNames[i], name)) return i;
    return std::nullopt;
}

constexpr bool IsBytesColumn(std::size_t column) {
    return ColumnTypes[column] == ColumnType::Text || ColumnTypes[column] == ColumnType::Memo;
}

}  // namespace bmr::engine
