#include "backup/backupname.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "base/bytes.h"

namespace bmr::backup {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kExtension = ".bmz";
constexpr std::size_t kDigits = 12;  ///< yymmddHHnnss
constexpr int kSecondsOfDay = 86400;
/// Two digits of a year from here on are of the last century.
constexpr int kFirstYear = 80;

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// A folder of a system that parts its folders by "\" is told by its text, so that a name is the same
/// wherever it is made.
char SeparatorOf(std::string_view folder) {
    if (folder.find('/') != std::string_view::npos) return '/';
    const bool drive = folder.size() >= 2 && folder[1] == ':' && IsLetter(folder[0]);
    return drive || folder.find('\\') != std::string_view::npos ? '\\' : '/';
}

fs::path WithLastLetter(const fs::path& path, char letter, std::string_view more) {
    std::string text = PathText(path);
    const bool capital = !text.empty() && text.back() >= 'A' && text.back() <= 'Z';
    if (!text.empty()) text.back() = capital ? static_cast<char>(letter - 'a' + 'A') : letter;
    return PathOf(text.append(more));
}

}  // namespace

std::string PathText(const fs::path& path) {
    const auto utf8 = path.u8string();
    return {utf8.begin(), utf8.end()};
}

fs::path PathOf(std::string_view utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

std::string BareName(std::string_view path) {
    const std::size_t last = path.find_last_of("/\\");
    if (last != std::string_view::npos) path.remove_prefix(last + 1);
    if (path.size() >= 2 && path[1] == ':' && IsLetter(path[0])) path.remove_prefix(2);
    return std::string(path);
}

std::string BackupStem(const fs::path& database) {
    const std::string name = BareName(PathText(database));
    return name.substr(0, name.find('.'));
}

fs::path BackupFileName(const fs::path& folder, const fs::path& database, DateValue now) {
    const auto seconds = static_cast<long long>(std::llround(now.serial * kSecondsOfDay));
    const auto ofDay = static_cast<int>(seconds % kSecondsOfDay);
    const auto date = YearMonthDay({static_cast<std::int32_t>(seconds / kSecondsOfDay)});
    std::array<char, 32> digits{};
    std::snprintf(digits.data(), digits.size(), "%02d%02u%02u%02d%02d%02d",
                  static_cast<int>(date.year()) % 100, static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), ofDay / 3600, ofDay / 60 % 60, ofDay % 60);
    std::string path = PathText(folder);
    const char separator = SeparatorOf(path);
    if (!path.empty() && path.back() != separator && path.back() != '/') path += separator;
    return PathOf(path + BackupStem(database) + digits.data() + std::string(kExtension));
}

bool IsBackupName(const fs::path& file) {
    const std::string name = PathText(file);
    return name.size() > kExtension.size() &&
           CompareNoCase(std::string_view(name).substr(name.size() - kExtension.size()), kExtension) == 0;
}

std::optional<DateValue> DateOfBackup(const fs::path& backup) {
    const std::string name = BareName(PathText(backup));
    if (!IsBackupName(backup) || name.size() < kExtension.size() + kDigits) return std::nullopt;
    const std::string digits = name.substr(name.size() - kExtension.size() - kDigits, kDigits);
    if (digits.find_first_not_of("0123456789") != std::string::npos) return std::nullopt;
    const auto two = [&digits](std::size_t at) { return (digits[at] - '0') * 10 + (digits[at + 1] - '0'); };
    using namespace std::chrono;
    const year_month_day date{year(two(0) + (two(0) < kFirstYear ? 2000 : 1900)),
                              month(static_cast<unsigned>(two(2))), day(static_cast<unsigned>(two(4)))};
    if (!date.ok() || two(6) > 23 || two(8) > 59 || two(10) > 59) return std::nullopt;
    return DateValue{DayFrom(date).serial +
                     (two(6) * 3600 + two(8) * 60 + two(10)) / static_cast<double>(kSecondsOfDay)};
}

fs::path RestoredName(const fs::path& database) {
    return WithLastLetter(database, 'q', "");
}

fs::path FormerName(const fs::path& database, int age) {
    return WithLastLetter(database, 'b', age == 0 ? "" : std::to_string(age));
}

fs::path PartName(const fs::path& target) {
    std::string text = PathText(target);
    if (!text.empty()) text.back() = '~';
    return PathOf(text);
}

fs::path DatabaseOfRestored(const fs::path& restored) {
    return WithLastLetter(restored, 'r', "");
}

}  // namespace bmr::backup
