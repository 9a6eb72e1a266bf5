#include "interchange/palmfile.h"

#include <fstream>
#include <system_error>

#include "base/bytes.h"
#include "engine/fileio.h"
#include "store/section.h"

namespace bmr::interchange {

namespace {

using store::Section;

/// What the files of a section are told by.
struct Form {
    std::uint8_t section;
    std::string_view tag;
    std::string_view name;
    std::uint16_t fields;
    /// One field more: the record's position stands in the third place.
    bool mayHavePosition;
};

constexpr std::array<Form, 4> kForms{{
    {Section::Address, "AB10", "address.dat", 30, false},
    {Section::Calendar, "DB10", "datebook.dat", 15, false},
    {Section::Memo, "MP10", "memopad.dat", 5, true},
    {Section::Todo, "TD10", "todo.dat", 9, true},
}};

const Form* FormOf(std::uint8_t section) {
    for (const Form& form : kForms)
        if (form.section == section) return &form;
    return nullptr;
}

std::string_view BehindLast(std::string_view path, char separator) {
    const std::size_t last = path.rfind(separator);
    return last == std::string_view::npos ? path : path.substr(last + 1);
}

/// The quotient rounded to the nearest, a half to the even one.
std::uint32_t RoundedQuotient(std::uint32_t total, std::uint32_t divisor) {
    const std::uint32_t whole = total / divisor;
    const std::uint64_t twice = std::uint64_t{total % divisor} * 2;
    return whole + (twice > divisor || (twice == divisor && whole % 2 == 1) ? 1 : 0);
}

PalmCategory ReadCategory(PalmBytes& file) {
    PalmCategory category;
    file.Long();  // its index, which the last of the three takes the place of
    category.id = file.Long();
    category.index = file.Long();
    category.longName = file.CString();
    category.shortName = file.CString();
    return category;
}

PalmRepeat ReadRepeat(PalmBytes& file) {
    constexpr std::uint16_t kNamed = 65535;
    PalmRepeat repeat;
    file.Long();
    const std::uint16_t exceptions = file.Word();
    for (unsigned i = 0; i < exceptions && !file.AtEnd(); ++i)
        repeat.exceptions.push_back(file.Long());
    repeat.classWord = file.Word();
    if (repeat.classWord == kNamed) {
        repeat.version = file.Word();
        repeat.className = file.Chars(file.Word());
    }
    if (repeat.classWord == 0) return repeat;
    repeat.kind = file.Long();
    repeat.interval = file.Long();
    repeat.end = file.Long();
    repeat.firstDay = file.Long();
    const auto longs = [&](int count) {
        for (; count > 0; --count)
            repeat.longs.push_back(file.Long());
    };
    switch (static_cast<PalmRepeatKind>(repeat.kind)) {
        case PalmRepeatKind::None:
            break;
        case PalmRepeatKind::Daily:
        case PalmRepeatKind::MonthlyByDate:
            longs(1);
            break;
        case PalmRepeatKind::Weekly:
            longs(1);
            repeat.mask = file.Byte();
            break;
        case PalmRepeatKind::MonthlyByWeekday:
        case PalmRepeatKind::Yearly:
            longs(2);
            break;
    }
    return repeat;
}

}  // namespace

std::string_view PalmFileName(std::uint8_t section) {
    const Form* form = FormOf(section);
    return form ? form->name : std::string_view();
}

bool IsPalmFileName(std::uint8_t section, const std::filesystem::path& file) {
    const auto utf8 = file.filename().u8string();
    return CompareNoCase(std::string(utf8.begin(), utf8.end()), PalmFileName(section)) == 0;
}

Result<PalmHeader> ReadPalmHeader(std::uint8_t section, PalmBytes& file) {
    const Form* form = FormOf(section);
    PalmHeader header;
    header.tag = file.Tag();
    if (!form || header.tag != form->tag) return Error{PalmNumber::WrongVersion, {}};
    header.path = file.CString();
    if (CompareNoCase(BehindLast(header.path, '\\'), form->name) != 0)
        return Error{PalmNumber::WrongName, {}};
    header.custom = file.CString();
    header.nextFree = file.Long();
    header.categoryCount = file.Long();
    for (std::uint32_t i = 0; i < header.categoryCount && !file.AtEnd(); ++i) {
        const PalmCategory category = ReadCategory(file);
        if (i < kMostPalmCategories) header.categories.push_back(category);
    }
    for (std::uint32_t& number : header.five)
        number = file.Long();
    header.fields = file.Word();
    for (unsigned i = 0; i < header.fields && !file.AtEnd(); ++i)
        header.types.push_back(file.Word());
    header.total = file.Long();
    const bool position = form->mayHavePosition && header.fields == form->fields + 1;
    if (header.fields != 0 && header.fields != form->fields && !position)
        return Error{PalmNumber::WrongVersion, {}};
    if (header.fields != 0) header.records = RoundedQuotient(header.total, header.fields);
    return header;
}

bool PalmRecords::Begin() {
    if (read_ == header_.records || file_.AtEnd()) return false;
    ++read_;
    return true;
}

bool PalmRecords::Next(PalmAddressRecord& record) {
    if (!Begin()) return false;
    record = {};
    for (std::uint32_t* number : {&record.id, &record.status, &record.position})
        *number = file_.IntField();
    for (std::string_view* text : {&record.last, &record.first, &record.title, &record.company})
        *text = file_.TextField();
    for (std::size_t i = 0; i < PalmAddressRecord::kPhones; ++i) {
        record.labels[i] = file_.IntField();
        record.phones[i] = file_.TextField();
    }
    for (std::string_view* text :
         {&record.address, &record.city, &record.state, &record.zip, &record.country, &record.note})
        *text = file_.TextField();
    record.isPrivate = file_.BoolField();
    record.category = file_.IntField();
    for (std::string_view& text : record.custom)
        text = file_.TextField();
    record.displayPhone = file_.IntField();
    return true;
}

bool PalmRecords::Next(PalmMemoRecord& record) {
    if (!Begin()) return false;
    record = {};
    record.id = file_.IntField();
    record.status = file_.IntField();
    if (header_.fields > FormOf(Section::Memo)->fields) file_.IntField();
    record.memo = file_.TextField();
    record.isPrivate = file_.BoolField();
    record.category = file_.IntField();
    return true;
}

bool PalmRecords::Next(PalmTodoRecord& record) {
    if (!Begin()) return false;
    record = {};
    record.id = file_.IntField();
    record.status = file_.IntField();
    if (header_.fields > FormOf(Section::Todo)->fields) file_.IntField();
    record.description = file_.TextField();
    record.due = file_.IntField();
    record.completed = file_.BoolField();
    record.priority = file_.IntField();
    record.isPrivate = file_.BoolField();
    record.category = file_.IntField();
    record.note = file_.TextField();
    return true;
}

bool PalmRecords::Next(PalmDatebookRecord& record) {
    if (!Begin()) return false;
    record = {};
    for (std::uint32_t* number : {&record.id, &record.status, &record.position, &record.start, &record.end})
        *number = file_.IntField();
    record.text = file_.TextField();
    record.duration = file_.IntField();
    record.note = file_.TextField();
    record.untimed = file_.BoolField();
    record.isPrivate = file_.BoolField();
    record.category = file_.IntField();
    record.alarm = file_.BoolField();
    record.alarmTime = file_.IntField();
    record.alarmUnit = file_.IntField();
    record.repeat = ReadRepeat(file_);
    return true;
}

Result<PalmContents> LoadPalmFile(const std::filesystem::path& file) {
    std::error_code error;
    const std::uint64_t size = std::filesystem::file_size(file, error);
    if (error == std::errc::no_such_file_or_directory) return Error{PalmNumber::NotFound, {}};
    if (error) return Error{engine::NumberOfErrno(error.default_error_condition().value()), error.message()};
    PalmContents contents;
    contents.bytes.resize(static_cast<std::size_t>(size));
    std::ifstream stream(file, std::ios::binary);
    stream.read(contents.bytes.data(), static_cast<std::streamsize>(size));
    if (stream.gcount() != static_cast<std::streamsize>(size)) {
        contents.failure = PalmNumber::ReadFailed;
        contents.bytes.resize(static_cast<std::size_t>(stream.gcount()));
    }
    return contents;
}

}  // namespace bmr::interchange
