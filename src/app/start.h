#pragma once

#include <QLockFile>
#include <QString>
#include <QStringList>
#include <filesystem>
#include <optional>
#include <string>

namespace bmr::app {

/// The folders that the program knows; handed in, so that a test can give others.
struct Folders {
    std::filesystem::path documents;  ///< the user's documents; "Brindlemere" below it holds the default file
    std::filesystem::path runtime;    ///< lock of the one running program; gone after the user's last logout
};
Folders SystemFolders();

/// What the command line asks for.
struct Arguments {
    bool help = false;
    bool version = false;
    QString theme;  ///< light, dark, contrast or system; empty: as the window was left
    std::optional<std::filesystem::path> file;
    QString error;  ///< one line that says what is wrong; empty when all is well
};
/// `words` without the program's name. Never fails: what is wrong stands in `error`.
Arguments ParseArguments(const QStringList& words);
QString HelpText();
QString VersionText();

/// Whether a window can open at all. The toolkit aborts without a screen, so it is asked before.
bool HasScreen(const QStringList& words);
/// What to tell a person who has no screen.
QString NoScreenText();

/// Held by the one program of a user that runs.
class SingleInstance {
  public:
    explicit SingleInstance(const std::filesystem::path& runtimeFolder);
    /// False when another process has it. The lock of a process that died is taken over.
    bool Take();

  private:
    QLockFile lock_;
};

/// Paths as this platform writes them, without a detour over an 8-bit encoding.
QString ToQString(const std::filesystem::path& path);
std::filesystem::path ToPath(const QString& path);

}  // namespace bmr::app
