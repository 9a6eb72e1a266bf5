#include "kit/words.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>
#include <algorithm>

#include "crypto/cry.h"
#include "store/words.h"

namespace bmr::kit {

namespace {

QString Number(std::size_t number) {
    return QLocale().toString(static_cast<qulonglong>(number));
}

QString Counted(std::size_t count, bool inBytes) {
    const char* unit =
        inBytes ? (count == 1 ? "%1 byte" : "%1 bytes") : (count == 1 ? "%1 character" : "%1 characters");
    return QCoreApplication::translate("words", unit).arg(Number(count));
}

}  // namespace

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

QString ShowWords(std::string_view words) {
    return QString::fromUtf8(words.data(), static_cast<qsizetype>(words.size()));
}

Words TakeWords(const QString& text) {
    return text.toStdString();
}

QString ShowLines(std::string_view words) {
    return ShowWords(words).replace("\r\n", "\n").replace('\r', '\n');
}

Words TakeLines(const QString& text, std::string_view before) {
    const bool ours =
        before.find("\r\n") != std::string_view::npos || before.find('\n') == std::string_view::npos;
    return TakeWords(ours ? QString(text).replace("\n", "\r\n") : text);
}

QString LengthOf(std::string_view words) {
    // A person counts characters, whatever room they take.
    const auto first = [](char c) { return (static_cast<unsigned>(c) & 0xC0U) != 0x80; };
    return Counted(static_cast<std::size_t>(std::ranges::count_if(words, first)), false);
}

QString TooLongOf(std::string_view words) {
    const store::WordsLength measured = store::MeasureWords(words);
    if (!measured.TooLong()) return {};
    return QCoreApplication::translate("words", "Too long by %1: %2 fit.")
        .arg(Counted(measured.length - measured.most, measured.inBytes), Number(measured.most));
}

Secret ToSecret(const QString& text) {
    std::string utf8 = text.toStdString();
    Secret secret(utf8);
    cry::WipeString(utf8);
    return secret;
}

Secret ToLatinSecret(const QString& text) {
    Bytes bytes = FromQString(text);
    Secret secret(bytes);
    cry::WipeString(bytes);
    return secret;
}

void WipeQString(QString& text) {
    if (!text.isEmpty() && text.isDetached()) text.fill(QChar(u'\0'));
    text.clear();
}

}  // namespace bmr::kit
