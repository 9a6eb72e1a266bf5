#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bmr::test {

/// Writes Palm Desktop files: numbers low byte first, fields with a type word before them.
class PalmWriter {
  public:
    PalmWriter& Byte(unsigned value) {
        bytes += static_cast<char>(value);
        return *this;
    }
    PalmWriter& Word(unsigned value) { return Byte(value & 0xff).Byte(value >> 8 & 0xff); }
    PalmWriter& Long(std::uint32_t value) { return Word(value & 0xffff).Word(value >> 16); }
    PalmWriter& Chars(std::string_view text) {
        bytes += text;
        return *this;
    }
    PalmWriter& CString(std::string_view text) {
        if (text.size() < 255) return Byte(static_cast<unsigned>(text.size())).Chars(text);
        return Byte(255).Word(static_cast<unsigned>(text.size())).Chars(text);
    }
    PalmWriter& Int(std::uint32_t value) { return Long(1).Long(value); }
    PalmWriter& Bool(bool value) { return Long(6).Long(value ? 1 : 0); }
    PalmWriter& Text(std::string_view text) { return Long(5).Long(0).CString(text); }

    /// Everything before the first record. `tag` as it is told ("MP10").
    PalmWriter& Header(std::string_view tag, std::string_view name,
                       const std::vector<std::string>& categories, unsigned fields, std::uint32_t records) {
        Byte(0).Byte(1).Byte(static_cast<unsigned char>(tag[1])).Byte(static_cast<unsigned char>(tag[0]));
        CString("C:\\Palm\\" + std::string(name)).CString("").Long(1);
        Long(static_cast<std::uint32_t>(categories.size()));
        for (std::uint32_t i = 0; i < categories.size(); ++i)
            Long(i).Long(i + 1).Long(0).CString(categories[i]).CString("");
        for (int i = 0; i < 5; ++i)
            Long(0);
        Word(fields);
        for (unsigned i = 0; i < fields; ++i)
            Word(1);
        return Long(fields * records);
    }
    PalmWriter& Memo(std::string_view text, bool isPrivate = false, std::uint32_t category = 0) {
        return Int(1).Int(0).Text(text).Bool(isPrivate).Int(category);
    }
    PalmWriter& Todo(std::string_view text, std::uint32_t due, bool completed, std::uint32_t priority,
                     std::string_view note = "", std::uint32_t category = 0) {
        return Int(1).Int(0).Text(text).Int(due).Bool(completed).Int(priority).Bool(false).Int(category).Text(
            note);
    }
    /// Up to the repeat.
    PalmWriter& Appointment(std::string_view text, std::uint32_t start, std::uint32_t end,
                            bool untimed = false, std::uint32_t category = 0) {
        Int(1).Int(0).Int(0).Int(start).Int(end).Text(text).Int(0).Text("").Bool(untimed).Bool(false);
        return Int(category).Bool(false).Int(0).Int(0);
    }
    PalmWriter& NoRepeat() { return Long(8).Word(0).Word(0); }

    std::string bytes;
};

}  // namespace bmr::test
