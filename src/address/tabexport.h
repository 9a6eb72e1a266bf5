#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "base/bytes.h"
#include "base/ports.h"
#include "base/result.h"
#include "base/wiped.h"
#include "store/session.h"

/// The address book as a text of lines and tabs, for other programs: plain text outside of the enciphered
/// file, at the user's express wish.
namespace bmr::address {

/// The names of the fields from 1 on, each with a tab behind it, and CR LF.
Bytes TabHeader();

/// Appends the line of a plain payload: the text of every field from 1 on with a tab behind it, and CR LF.
/// One byte a character: a text that code page 1252 does not hold is written in its letters, and counted.
/// Dates as the locale writes them. Tabs and line breaks of a field stay as they are.
void AppendTabLine(WipedText& out, std::string_view payload, const LocaleFacts& locale,
                   std::size_t& transliterated);

struct Exported {
    std::size_t records = 0;
    std::size_t transliterated = 0;  ///< texts of which only letters were written
};

/// The file that the dialog proposes, and what it is asked with.
inline constexpr const char* kTabFileName = "bmrAddress_Tab.txt";
FileRequest TabFileRequest();

/// Writes what the list of a category shows, in its order, to `path`, which is replaced in one step when all
/// is on the disk. On an error nothing has changed, and the error's words tell why.
Result<Exported> ExportAddressTabDelimited(store::Session& session, std::int32_t category,
                                           const std::filesystem::path& path, const LocaleFacts& locale);

/// What is told afterwards.
std::string ExportedText(const Exported& exported, const std::filesystem::path& path);

}  // namespace bmr::address
