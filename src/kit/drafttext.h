#pragma once

#include <QLineEdit>
#include <QString>
#include <optional>

#include "custody/drafts.h"

namespace bmr::kit {

/// What a control holds, into and out of a draft.
void PutText(custody::Draft& draft, std::uint8_t number, const QString& text);
QString TextOf(const custody::Draft& draft, std::uint8_t number);
void PutFlag(custody::Draft& draft, std::uint8_t number, bool on);
bool FlagOf(const custody::Draft& draft, std::uint8_t number);
void PutNumber(custody::Draft& draft, std::uint8_t number, std::optional<std::int32_t> value);
std::optional<std::int32_t> NumberOf(const custody::Draft& draft, std::uint8_t number);

/// Puts the cursor behind the text once the form has come up, which selects all: the next key would replace
/// it.
void ContinueAtEnd(QLineEdit& edit);

/// The words by which a list would show it.
void SetTitle(custody::Draft& draft, const QString& text);

}  // namespace bmr::kit
