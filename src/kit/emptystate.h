#pragma once

#include <QList>
#include <QString>
#include <QWidget>

class QAction;
class QHBoxLayout;
class QLabel;

namespace bmr::kit {

/// What stands in the place of a list without rows: a pale icon, one sentence, and what can be done about it.
class EmptyState final : public QWidget {
    Q_OBJECT

  public:
    explicit EmptyState(QWidget* parent = nullptr);

    /// One button for each action, in order; they are named after the action's objectName with "empty_" in
    /// front.
    void Set(const QString& icon, const QString& sentence, const QList<QAction*>& actions);

    QString Sentence() const;

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void Draw();

    QString name_;
    QLabel* icon_;
    QLabel* sentence_;
    QHBoxLayout* buttons_;
};

}  // namespace bmr::kit
