#pragma once

#include <QWidget>

class QTextBrowser;

namespace bmr::app {

/// The user guide, from the pages that are built into the program, in a window beside the main one.
class HelpWindow final : public QWidget {
    Q_OBJECT

  public:
    explicit HelpWindow(QWidget* parent);

    /// False when the program was built without the guide.
    static bool Available();
    /// Shows a page by its name ("tasks"); the first one where there is no such page.
    void Open(const QString& page);

  private:
    QTextBrowser* browser_;
};

/// Name, version, what the program is and what `more` adds.
void ShowAbout(QWidget* parent, const QString& more);

}  // namespace bmr::app
