#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "address/record.h"
#include "base/result.h"
#include "base/wiped.h"
#include "store/session.h"

namespace bmr::address {

/// The mail address of a record: the one that the list shows, else the first that is one; empty without.
WipedText MailAddressOf(const Record& record);

/// Whom a mail to all of a category reaches.
struct Mailing {
    std::vector<WipedText> addresses;  ///< each once, in the order of the list
    std::size_t without = 0;           ///< records that have none

    /// As one address of the mail program: all of them as blind copies, as people need not know each other.
    std::string Text() const;
};

/// Of what the list of the category shows.
Result<Mailing> MailingOf(store::Session& session, std::int32_t category);

}  // namespace bmr::address
