#include "kit/steps.h"

#include <QCoreApplication>
#include <QLocale>

#include "store/sections.h"
#include "store/undo.h"

namespace bmr::kit {

namespace {

QString Text(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString Tr(const char* text) {
    return QCoreApplication::translate("steps", text);
}

QString Capital(QString text) {
    if (!text.isEmpty()) text[0] = text[0].toUpper();
    return text;
}

QString One(std::uint8_t section) {
    const auto* facts = store::FactsOf(section);
    return facts ? Text(facts->one) : QString();
}

}  // namespace

QString CountOf(std::uint8_t section, std::size_t count) {
    const auto* facts = store::FactsOf(section);
    if (!facts) return {};
    return QLocale().toString(static_cast<qulonglong>(count)) + " " +
           Text(count == 1 ? facts->one : facts->many);
}

QString StepName(const store::UndoRecord& step) {
    if (step.words.alone) return Text(step.words.noun);
    const bool one = step.rows == 1;
    QString noun = Text(step.words.noun);
    if (noun.isEmpty() && step.added == step.rows) {
        if (one) return Tr("new %1").arg(One(step.section));
        noun = Tr("adding");
    }
    if (noun.isEmpty()) noun = step.deleted == step.rows ? Tr("delete") : Tr("change");
    return one ? Tr("%1 of the %2").arg(noun, One(step.section))
               : Tr("%1 of %2").arg(noun, CountOf(step.section, step.rows));
}

QString StepDone(const store::UndoRecord& step) {
    if (step.words.alone) return Text(step.words.done);
    QString done = Text(step.words.done);
    if (done.isEmpty())
        done = step.added == step.rows     ? Tr("added")
               : step.deleted == step.rows ? Tr("deleted")
                                           : Tr("changed");
    const QString what = step.rows == 1 ? Capital(One(step.section)) : CountOf(step.section, step.rows);
    return what + " " + done + ".";
}

QString StepTaken(const QString& done, const store::UndoOutcome& outcome) {
    if (outcome.left == 0) return done;
    const QString left = outcome.written == 0 ? Tr("Nothing was taken back: it was changed meanwhile.")
                         : outcome.left == 1
                             ? Tr("One row was changed meanwhile and stays as it is.")
                             : Tr("%1 rows were changed meanwhile and stay as they are.")
                                   .arg(QLocale().toString(static_cast<qulonglong>(outcome.left)));
    return outcome.written == 0 ? left : done + " " + left;
}

}  // namespace bmr::kit
