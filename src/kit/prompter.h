#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <functional>

#include "base/ports.h"

namespace bmr::kit {

/// Asks and tells by windows. Every modal call of the program goes through it, because a session that is
/// ending must get no question any more: then each call answers at once as if it had been cancelled.
class QtPrompter final : public QObject, public Prompter {
    Q_OBJECT

  public:
    explicit QtPrompter(QObject* parent = nullptr) : QObject(parent) {}
    ~QtPrompter() override;

    /// The window that boxes stand over when no dialog is open.
    void SetWindow(QWidget* window) { window_ = window; }

    /// The folder in which the next file dialog begins.
    void SetFolder(const std::filesystem::path& folder);

    /// Tells whether the session is going down (`Session::ending`).
    void SetEnding(std::function<bool()> ending) { ending_ = std::move(ending); }

    /// What to do with a passphrase prompt before it is shown (guards attach themselves here).
    void SetOnPrompt(std::function<void(QWidget& prompt)> onPrompt) { onPrompt_ = std::move(onPrompt); }

    /// Length of the forced pause in milliseconds; 2000 unless a test is in a hurry.
    void SetPause(int milliseconds) { pause_ = milliseconds; }

    Answer Ask(const Box& box) override;
    std::optional<std::string> InputBox(const std::string& title, const std::string& prompt,
                                        const std::string& initial) override;
    bool AskSecret(const PassphraseRequest& request, Secret& typed) override;
    std::optional<std::filesystem::path> AskOpenFile(const FileRequest& request) override;
    std::optional<std::filesystem::path> AskSaveFile(const FileRequest& request) override;
    void Comment(const std::string& text, bool busy) override;
    void PauseAfterFailure() override;

  signals:
    /// The words for the status panel `comment`; empty when there is nothing to say.
    void CommentChanged(const QString& text);

  private:
    bool Ending() const { return ending_ && ending_(); }
    QWidget* Over() const;
    std::optional<std::filesystem::path> AskFile(const FileRequest& request, bool save);

    QPointer<QWidget> window_;
    std::function<bool()> ending_;
    std::function<void(QWidget&)> onPrompt_;
    QString folder_;  ///< where the last file was chosen or opened
    int pause_ = 2000;
    bool busy_ = false;
};

}  // namespace bmr::kit
