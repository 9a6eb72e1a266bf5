#pragma once

#include <QLineEdit>
#include <QString>

#include "store/drafts.h"

namespace bmr::kit {

/// What a control holds, into and out of a draft.
void PutText(store::Draft& draft, std::uint8_t number, const QString& text);
QString TextOf(const store::Draft& draft, std::uint8_t number);
void PutFlag(store::Draft& draft, std::uint8_t number, bool on);
bool FlagOf(const store::Draft& draft, std::uint8_t number);

/// Puts the cursor behind the text once the form has come up, which selects all: the next key would replace
/// it.
void ContinueAtEnd(QLineEdit& edit);

/// The words by which a list would show it.
void SetTitle(store::Draft& draft, const QString& text);

}  // namespace bmr::kit
