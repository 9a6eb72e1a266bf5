#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "base/wiped.h"
#include "interchange/palmbytes.h"

namespace bmr::interchange {

/// The messages of this room as error numbers.
struct PalmNumber {
    static constexpr int WrongName = -51;      ///< "File format not recognized."
    static constexpr int ReadFailed = -103;    ///< what was read so far counts
    static constexpr int WrongVersion = -129;  ///< tag, or a number of fields that is not known
    static constexpr int NotFound = -134;
};

/// A category as the file holds it. Texts in code page 1252.
struct PalmCategory {
    std::uint32_t index = 0;  ///< whether it was changed, in truth: records count along the list instead
    std::uint32_t id = 0;
    std::string_view longName;
    std::string_view shortName;
};

/// So many categories are kept of a file; a record of a later one is unfiled. No list of ours holds as many.
inline constexpr std::size_t kMostPalmCategories = 1000;

struct PalmHeader {
    std::string tag;
    std::string_view path;
    std::string_view custom;
    std::uint32_t nextFree = 0;
    std::uint32_t categoryCount = 0;  ///< as told, whatever there is
    std::vector<PalmCategory> categories;
    /// Resource id, fields in a row, places of the record's id, its status and its placement.
    std::array<std::uint32_t, 5> five{};
    std::uint16_t fields = 0;
    std::vector<std::uint16_t> types;
    std::uint32_t total = 0;    ///< fields of all records
    std::uint32_t records = 0;  ///< as told
};

struct PalmAddressRecord {
    static constexpr std::size_t kPhones = 5;
    std::uint32_t id = 0, status = 0, position = 0;
    std::string_view last, first, title, company;
    std::array<std::uint32_t, kPhones> labels{};
    std::array<std::string_view, kPhones> phones;
    std::string_view address, city, state, zip, country, note;
    bool isPrivate = false;
    std::uint32_t category = 0;
    std::array<std::string_view, 4> custom;
    std::uint32_t displayPhone = 0;
};

struct PalmMemoRecord {
    std::uint32_t id = 0, status = 0;
    std::string_view memo;
    bool isPrivate = false;
    std::uint32_t category = 0;
};

struct PalmTodoRecord {
    std::uint32_t id = 0, status = 0;
    std::string_view description;
    std::uint32_t due = 0;  ///< seconds; 0 none
    bool completed = false;
    std::uint32_t priority = 0;
    bool isPrivate = false;
    std::uint32_t category = 0;
    std::string_view note;
};

enum class PalmRepeatKind : std::uint32_t { None, Daily, Weekly, MonthlyByWeekday, MonthlyByDate, Yearly };

struct PalmRepeat {
    std::vector<std::uint32_t> exceptions;  ///< seconds
    std::uint16_t classWord = 0;            ///< 0: no repeat, and nothing of what follows
    std::uint16_t version = 0;
    std::string_view className;
    std::uint32_t kind = 0;  ///< `PalmRepeatKind`, or a number that is none
    std::uint32_t interval = 0;
    std::uint32_t end = 0;       ///< seconds; 0 none
    std::uint32_t firstDay = 0;  ///< of the week, 0 = Sunday
    std::vector<std::uint32_t> longs;
    std::uint8_t mask = 0;  ///< weekly: bit 0 = Sunday
};

struct PalmDatebookRecord {
    std::uint32_t id = 0, status = 0, position = 0;
    std::uint32_t start = 0, end = 0;  ///< seconds
    std::string_view text;
    std::uint32_t duration = 0;
    std::string_view note;
    bool untimed = false, isPrivate = false;
    std::uint32_t category = 0;
    bool alarm = false;
    std::uint32_t alarmTime = 0, alarmUnit = 0;
    PalmRepeat repeat;
};

/// The name that the file of a section must have: "address.dat", "datebook.dat", "memopad.dat", "todo.dat";
/// empty for a section without one.
std::string_view PalmFileName(std::uint8_t section);
/// Whether a chosen file has it, in any case. Else Msg 50 and the name in capitals are shown.
bool IsPalmFileName(std::uint8_t section, const std::filesystem::path& file);

/// Reads the header of a section's file; `file` then stands at the first record. `WrongVersion`, `WrongName`.
/// Lists end with the bytes, whatever number is told.
Result<PalmHeader> ReadPalmHeader(std::uint8_t section, PalmBytes& file);

/// The records of a file one after the other, in file order. What they hold lives as long as the bytes.
class PalmRecords {
  public:
    PalmRecords(const PalmHeader& header, PalmBytes& file) : header_(header), file_(file) {}

    /// False when all that were told have been read, or the bytes are at their end. The record type must be
    /// that of the header's section.
    bool Next(PalmAddressRecord& record);
    bool Next(PalmMemoRecord& record);
    bool Next(PalmTodoRecord& record);
    bool Next(PalmDatebookRecord& record);

  private:
    bool Begin();

    const PalmHeader& header_;
    PalmBytes& file_;
    std::uint32_t read_ = 0;
};

/// The bytes of a chosen file, wiped when they go. `failure`: 0, or `ReadFailed` when the disk gave only a
/// part.
struct PalmContents {
    WipedText bytes;
    int failure = 0;
};
Result<PalmContents> LoadPalmFile(const std::filesystem::path& file);

}  // namespace bmr::interchange
