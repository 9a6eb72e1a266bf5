#include "kit/focusframe.h"

#include <QEvent>
#include <QFrame>

namespace bmr::kit {

namespace {

class FocusFrame final : public QObject {
  public:
    FocusFrame(QFrame& frame, QWidget& field) : QObject(&field), frame_(frame) {
        // It keeps its place, so that nothing moves when it is seen.
        frame.setFrameStyle(static_cast<int>(QFrame::Box) | static_cast<int>(QFrame::Plain));
        frame.setForegroundRole(QPalette::Base);
        field.installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::FocusIn) frame_.setForegroundRole(QPalette::Highlight);
        if (event->type() == QEvent::FocusOut) frame_.setForegroundRole(QPalette::Base);
        return QObject::eventFilter(watched, event);
    }

  private:
    QFrame& frame_;
};

}  // namespace

void ShowFocusBy(QFrame& frame, QWidget& field) {
    new FocusFrame(frame, field);
}

}  // namespace bmr::kit
