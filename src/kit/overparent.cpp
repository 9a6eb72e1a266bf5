#include "kit/overparent.h"

#include <QDialog>
#include <QEvent>
#include <QScreen>
#include <algorithm>

namespace bmr::kit {

namespace {

class Follower final : public QObject {
  public:
    Follower(QDialog& dialog, QWidget& behind) : QObject(&dialog), dialog_(dialog), behind_(behind) {
        dialog.installEventFilter(this);
        behind.installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool moved = watched == &behind_ && event->type() == QEvent::Move;
        // A dialog takes its size while it comes up; later only the person gives it another.
        const bool sized = event->type() == QEvent::Resize && (watched == &behind_ || !event->spontaneous());
        if (dialog_.isVisible() && (moved || sized || (watched == &dialog_ && event->type() == QEvent::Show)))
            Centre();
        return QObject::eventFilter(watched, event);
    }

  private:
    void Centre() {
        QRect place = dialog_.frameGeometry();
        const QRect screen = behind_.screen()->availableGeometry();
        place.moveCenter(behind_.frameGeometry().center());
        place.moveRight(std::min(place.right(), screen.right()));
        place.moveBottom(std::min(place.bottom(), screen.bottom()));
        place.moveLeft(std::max(place.left(), screen.left()));
        place.moveTop(std::max(place.top(), screen.top()));
        dialog_.move(place.topLeft());
    }

    QDialog& dialog_;
    QWidget& behind_;
};

}  // namespace

void KeepOverParent(QDialog& dialog) {
    if (QWidget* parent = dialog.parentWidget()) new Follower(dialog, *parent->window());
}

}  // namespace bmr::kit
