#include "address/mailing.h"

#include <set>

#include "address/addressbook.h"
#include "address/contact.h"
#include "address/payloadsource.h"
#include "base/unicode.h"
#include "shell/helpers.h"

namespace bmr::address {
namespace {

bool IsMail(const Record& record, std::size_t slot, std::string& address) {
    address = record.Com(slot);
    return KindOfLabel(record.ComLabel(slot)) == ComKind::Email && shell::ValidEmail(address);
}

}  // namespace

WipedText MailAddressOf(const Record& record) {
    std::string address;
    if (const auto shown = DisplayedSlot(record); shown && IsMail(record, *shown, address)) return address;
    for (std::size_t slot = 0; slot < kComSlots; ++slot)
        if (IsMail(record, slot, address)) return address;
    return {};
}

std::string Mailing::Text() const {
    std::string text = "?bcc=";
    for (const WipedText& address : addresses)
        text += (text.ends_with('=') ? "" : ",") + std::string(address);
    return text;
}

Result<Mailing> MailingOf(store::Session& session, std::int32_t category) {
    auto keys = ListRecords(session, category);
    if (!keys) return keys.error();
    Mailing mailing;
    std::set<std::string> seen;
    PayloadSource source(session, std::move(*keys));
    while (source.Next([&](const PayloadRow& row) {
        WipedText address = MailAddressOf(DecodeAddressRecord(row.payload, row.name));
        if (address.empty())
            ++mailing.without;
        else if (seen.insert(FoldCase(address)).second)
            mailing.addresses.push_back(std::move(address));
    })) {
    }
    if (source.error() != 0) return Error{source.error(), session.ProgramDb->LastError()};
    return mailing;
}

}  // namespace bmr::address
