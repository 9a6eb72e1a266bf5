#include "app/start.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace bmr::app {

Folders SystemFolders() {
    QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (documents.isEmpty()) documents = QDir::homePath();
    return {ToPath(documents), ToPath(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation))};
}

Arguments ParseArguments(const QStringList& words) {
    static const QStringList themes{"system", "light", "dark", "contrast"};
    Arguments out;
    bool namesOnly = false;
    for (qsizetype at = 0; at < words.size() && out.error.isEmpty(); ++at) {
        const QString& word = words[at];
        if (!namesOnly && word == "--") {
            namesOnly = true;
        } else if (!namesOnly && (word == "-h" || word == "--help")) {
            out.help = true;
        } else if (!namesOnly && (word == "-v" || word == "--version")) {
            out.version = true;
        } else if (!namesOnly && (word == "--theme" || word.startsWith("--theme="))) {
            const bool joined = word.contains('=');
            out.theme = joined ? word.section('=', 1) : words.value(++at);
            if (!themes.contains(out.theme)) out.error = "--theme wants one of: " + themes.join(", ");
        } else if (!namesOnly && word.startsWith('-') && word.size() > 1) {
            out.error = "unknown option " + word;
        } else if (out.file) {
            out.error = "only one database can be opened at a time";
        } else {
            out.file = ToPath(QDir::current().absoluteFilePath(word));
        }
    }
    return out;
}

QString VersionText() {
    return "Brindlemere " BMR_VERSION "\n";
}

QString HelpText() {
    return "Usage: brindlemere [options] [FILE]\n"
           "A personal information manager whose data lives in one encrypted file.\n"
           "\n"
           "FILE                 open this database (.bmr); without it the last one opened\n"
           "--theme NAME         system, light, dark or contrast, for this time\n"
           "-h, --help           show this text and end\n"
           "-v, --version        show the version and end\n"
           "\n"
           "Without a screen the same databases are worked with the command bmr (bmr --help).\n";
}

bool HasScreen(const QStringList& words) {
#if defined(Q_OS_WIN) || defined(Q_OS_MACOS)
    Q_UNUSED(words);
    return true;
#else
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (!qEnvironmentVariableIsEmpty(name)) return true;
    return words.contains("-platform") || words.contains("--platform");
#endif
}

QString NoScreenText() {
    return "brindlemere: there is no display, so no window can open.\n"
           "The same databases are worked from the command line, for example:\n"
           "  bmr new diary.bmr\n"
           "  bmr add diary.bmr todo --task \"Water the plants\" --due 2027-03-01\n"
           "  bmr list diary.bmr todo\n"
           "  bmr --help\n";
}

SingleInstance::SingleInstance(const std::filesystem::path& runtimeFolder)
    : lock_(QDir(ToQString(runtimeFolder)).filePath("brindlemere.lock")) {
    lock_.setStaleLockTime(
        0);  // a long sitting never makes the lock stale; only the death of its process does
}

bool SingleInstance::Take() {
    if (lock_.tryLock(0)) return true;
    // A folder where nothing can be written gives no lock; that must not keep anybody from their data.
    return lock_.error() != QLockFile::LockFailedError;
}

QString ToQString(const std::filesystem::path& path) {
#ifdef Q_OS_WIN
    return QString::fromStdWString(path.wstring());
#else
    return QFile::decodeName(path.c_str());
#endif
}

std::filesystem::path ToPath(const QString& path) {
#ifdef Q_OS_WIN
    return path.toStdWString();
#else
    return QFile::encodeName(path).toStdString();
#endif
}

}  // namespace bmr::app
