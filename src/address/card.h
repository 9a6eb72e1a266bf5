#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "address/contact.h"
#include "address/record.h"
#include "base/ports.h"
#include "base/wiped.h"
#include "store/settings.h"

/// The card of a record: a function from its fields to a head and the lines of a body.
namespace bmr::address {

enum class CardPart : std::uint8_t {
    Job,          ///< job title, company, department
    Rule,         ///< behind them
    Gap,          ///< the one empty line, behind the rule
    Number,       ///< caption and value of one of the nine
    Heading,      ///< of the addresses
    Caption,      ///< of one address
    AddressLine,  ///< of that address
    Personal,     ///< caption and value
    NoteHeading,
    Note,  ///< one text, whatever breaks it has
};

struct CardLine {
    CardPart part = CardPart::Job;
    WipedText caption;  ///< without its colon
    WipedText value;
    ComAction action = ComAction::None;  ///< what a click on the value does
    std::uint8_t field = 0;              ///< where the value comes from; of an address, its first field
};

struct Card {
    WipedText head;
    std::vector<CardLine> lines;
};

/// Dates as the locale writes them, the user's fields under the user's labels.
Card BuildCard(const Record& record, const store::UserLabels& labels, const LocaleFacts& locale);

/// The body as plain text: lines end in CR LF, but for a note's last one.
WipedText BodyText(const Card& card);

/// The whole card as plain text, for the clipboard.
WipedText CardText(const Card& card);

/// Head and body as marked text, a subset of HTML. Values that a click acts on are links to "com:N", where N
/// is the number of their field. What `found` names, without regard to case and accents, is marked.
WipedText MarkedHead(const Card& card, const std::vector<WipedText>& found = {});
WipedText MarkedBody(const Card& card, const std::vector<WipedText>& found = {});

/// One of a record's three addresses, by the number of its first field, as it goes on an envelope: who lives
/// there and where, lines ended by CR LF. The country's own order of town and code is told by the code. Empty
/// where the record has no such address.
WipedText EnvelopeText(const Record& record, std::uint8_t base);

/// The first of Home, Business and Other that holds any text: the number of its first field; that of Home
/// where none does.
std::uint8_t FirstAddress(const Record& record);

/// Whether an address has any of its five parts.
bool HasAddress(const Record& record, std::uint8_t base);

/// The three in the order of the card.
inline constexpr std::uint8_t kAddressBases[] = {FieldNumber::HomeAddress, FieldNumber::BusinessAddress,
                                                 FieldNumber::OtherAddress};

}  // namespace bmr::address
