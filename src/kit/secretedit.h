#pragma once

#include <QLineEdit>

#include "crypto/secret.h"

namespace bmr::kit {

/// A line edit whose text never enters the line edit while it is masked: the characters lie in memory that is
/// wiped, as bytes of code page 1252, and the base class holds one filler for each. So no undo list, no copy
/// of a shared string and no listener of the desktop's accessibility gets them. In clear they are of course
/// shown.
///
/// `text()` gives the fillers; the content is `Content()`. Characters outside the code page are refused.
class SecretEdit final : public QLineEdit {
    Q_OBJECT

  public:
    explicit SecretEdit(QWidget* parent = nullptr);
    ~SecretEdit() override;

    std::string_view Content() const { return content_.view(); }
    void SetContent(Secret content);
    /// Hands the content over and leaves the edit empty.
    Secret TakeContent();
    void Empty();

    void SetClear(bool clear);

  signals:
    /// The content changed, by whatever way.
    void ContentChanged();
    /// A character was typed or pasted that cannot be taken; `why` says so in words.
    void Refused(const QString& why);
    /// What the last letter typed tells about Caps Lock.
    void CapsLockSeen(bool on);

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    /// Replaces the selection, or puts it in at the cursor. False when it is refused.
    bool Insert(const QString& typed);
    void Replace(int start, int length, std::string_view with);
    /// Backspace and Delete; `whole` takes all up to that end, as words are not to be told from the dots.
    void Erase(bool backwards, bool whole);
    void ShowContent(int cursor);
    void JudgeCapsLock(const QKeyEvent& event);
    void Adopt(const QString& shown);

    Secret content_;
    bool clear_ = false;
    bool own_ = false;  ///< the text of the base class is being changed by us
};

}  // namespace bmr::kit
