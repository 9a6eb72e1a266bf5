#pragma once

#include <string>
#include <string_view>

#include "base/ports.h"
#include "custody/drafts.h"

namespace bmr::shell {

/// The question whether a draft is to be continued (Yes), discarded (No) or offered again at the next login
/// (Cancel). It shows the first words only where the section's list would show them now: no private record,
/// no section that still asks for its PIN. `section` is the section's name (UTF-8).
Box DraftOffer(const store::Session& session, const custody::Draft& draft, custody::DraftBase base,
               const std::string& section, const LocaleFacts& facts);

/// The beginning of a text in one line, cut between words and with an ellipsis where it is longer than
/// `most` characters. UTF-8.
WipedText FirstWords(std::string_view text, std::size_t most);

}  // namespace bmr::shell
