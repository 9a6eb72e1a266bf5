#include "custody/viewoptions.h"

#include <algorithm>

#include "custody/systemrecord.h"
#include "store/session.h"

namespace bmr::custody {
namespace {

constexpr std::uint8_t kField = 15;

bool Names(std::string_view line, std::string_view name) {
    return line.starts_with(name) && line.substr(name.size()).starts_with('=');
}

}  // namespace

Result<ViewOptions> ViewOptions::Read(store::Session& session) {
    const auto field = ReadSystemMemo(session, kField);
    if (!field) return field.error();
    ViewOptions options;
    options.stored_ = field->view();
    const std::string_view text = options.stored_;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        std::string line(text.substr(at, end - at));
        if (line.ends_with('\r')) line.pop_back();
        if (!line.empty()) options.lines_.push_back(std::move(line));
        at = end + 1;
    }
    return options;
}

std::string ViewOptions::Of(std::string_view name, std::string_view standard) const {
    for (const std::string& line : lines_)
        if (Names(line, name)) return line.substr(name.size() + 1);
    return std::string(standard);
}

void ViewOptions::Set(std::string_view name, std::string_view value) {
    const std::string line = std::string(name) + "=" + std::string(value);
    const auto there =
        std::ranges::find_if(lines_, [name](const std::string& each) { return Names(each, name); });
    if (value.empty()) {
        if (there != lines_.end()) lines_.erase(there);
    } else if (there != lines_.end()) {
        *there = line;
    } else {
        lines_.push_back(line);
    }
}

std::string ViewOptions::Text() const {
    std::string text;
    for (const std::string& line : lines_)
        text += line + "\r\n";
    return text;
}

int ViewOptions::Write(store::Session& session) const {
    const std::string text = Text();
    return text == stored_ ? 0 : WriteSystemMemo(session, kField, text);
}

}  // namespace bmr::custody
