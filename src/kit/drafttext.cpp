#include "kit/drafttext.h"

#include "kit/words.h"

namespace bmr::kit {

void PutText(custody::Draft& draft, std::uint8_t number, const QString& text) {
    draft.texts.push_back({number, ToSecret(text)});
}

QString TextOf(const custody::Draft& draft, std::uint8_t number) {
    const std::string_view text = draft.Text(number);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

void PutFlag(custody::Draft& draft, std::uint8_t number, bool on) {
    draft.Put(number, on ? "1" : "");
}

bool FlagOf(const custody::Draft& draft, std::uint8_t number) {
    return !draft.Text(number).empty();
}

void PutNumber(custody::Draft& draft, std::uint8_t number, std::optional<std::int32_t> value) {
    draft.Put(number, value ? std::to_string(*value) : std::string());
}

std::optional<std::int32_t> NumberOf(const custody::Draft& draft, std::uint8_t number) {
    bool whole = false;
    const int value = TextOf(draft, number).toInt(&whole);
    return whole ? std::optional(value) : std::nullopt;
}

void ContinueAtEnd(QLineEdit& edit) {
    QMetaObject::invokeMethod(
        &edit, [&edit] { edit.end(false); }, Qt::QueuedConnection);
}

void SetTitle(custody::Draft& draft, const QString& text) {
    draft.title = ToSecret(text);
}

}  // namespace bmr::kit
