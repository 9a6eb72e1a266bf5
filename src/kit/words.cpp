#include "kit/words.h"

#include <QCoreApplication>
#include <QStringList>

namespace bmr::kit {

QString ToQString(std::string_view bytes) {
    return QString::fromStdString(ToUtf8(bytes));
}

Bytes FromQString(const QString& text) {
    if (auto bytes = ToBytes(text.toStdString())) return std::move(*bytes);
    Bytes bytes;
    for (const char32_t character : text.toUcs4())
        bytes += ToBytes(QString::fromUcs4(&character, 1).toStdString()).value_or("?");
    return bytes;
}

QString RefusalOf(const QString& text) {
    const auto bad = FindUnmappable(text.toStdString());
    if (bad.empty()) return {};
    QStringList named;
    for (const Unmappable& one : bad) {
        const QString shown = "“" + QString::fromUcs4(&one.character, 1) + "”";
        if (!named.contains(shown) && named.size() < 5) named << shown;
    }
    const bool several = named.size() > 1;
    const QString last = several ? named.takeLast() : QString();
    const QString list = named.join(", ") + (several ? " and " + last : QString());
    return QCoreApplication::translate("words",
                                       "%1 cannot be stored: the file holds Western European letters only.")
        .arg(list);
}

void WipeQString(QString& text) {
    if (!text.isEmpty() && text.isDetached()) text.fill(QChar(u'\0'));
    text.clear();
}

}  // namespace bmr::kit
