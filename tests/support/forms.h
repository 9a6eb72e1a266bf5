#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <functional>
#include <vector>

namespace bmr::test {

/// The control of that name; the test ends when there is none.
template <class T = QWidget>
T& Named(const QWidget& form, const char* name) {
    T* found = form.findChild<T*>(name);
    if (!found) throw std::runtime_error(std::string("no control ") + name);
    return *found;
}

/// Presses a button with the mouse; at the mark of a check box, which may be wider than what can be hit.
inline void Click(const QWidget& form, const char* button) {
    auto& found = Named(form, button);
    const bool marked = found.inherits("QCheckBox") || found.inherits("QRadioButton");
    const QPoint at(marked ? 8 : found.width() / 2, found.height() / 2);
    QTest::mouseClick(&found, Qt::LeftButton, {}, at);
}

/// Types any characters; the test library's own keyClicks knows only those of ASCII.
inline void TypeText(QWidget& into, const QString& text) {
    for (const QChar c : text)
        QTest::sendKeyEvent(QTest::Click, &into, Qt::Key_unknown, QString(c), Qt::NoModifier);
}

/// Meets the windows that a call opens, in order, each as soon as it is in front. A window that nobody
/// expects is closed and fails the test; so does one that never comes. Behind every form test stands a
/// WindowWatch, for the time in which there is no visitor.
class Visitor {
  public:
    using Visit = std::function<void(QWidget&)>;

    Visitor() { LookBy(timer_); }
    ~Visitor() { EXPECT_TRUE(visits_.empty()) << visits_.size() << " expected windows did not open"; }
    Visitor(const Visitor&) = delete;
    Visitor& operator=(const Visitor&) = delete;

    /// The next window is one of that object name.
    Visitor& Meet(QString name, Visit visit) {
        visits_.push_back({std::move(name), std::move(visit)});
        return *this;
    }
    /// The next window is the message box `number`, and that button of it is pressed.
    Visitor& Box(int number, QMessageBox::StandardButton press) {
        return Meet("boxMsg", [number, press](QWidget& box) {
            EXPECT_EQ(box.property("number").toInt(), number);
            QAbstractButton* button = dynamic_cast<QMessageBox&>(box).button(press);
            ASSERT_TRUE(button) << "box " << number << " lacks that button";
            button->click();
        });
    }

  private:
    struct Expected {
        QString name;
        Visit visit;
    };

    void LookBy(QTimer& timer) {
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] { Look(); });
        timer.start(0);
    }
    void Look() {
        QWidget* window = QApplication::activeModalWidget();
        if (!window || window == inside_ || !window->isActiveWindow()) return;
        QWidget* before = std::exchange(inside_, window);
        QTimer within;  // a timer does not fire while it is at work; the visit may open another window
        LookBy(within);
        if (visits_.empty() || visits_.front().name != window->objectName()) {
            ADD_FAILURE() << "unexpected window " << window->objectName().toStdString();
            window->close();
        } else {
            const Visit visit = std::move(visits_.front().visit);
            visits_.erase(visits_.begin());
            visit(*window);
        }
        inside_ = before;
    }

    std::vector<Expected> visits_;
    QWidget* inside_ = nullptr;
    QTimer timer_;
};

}  // namespace bmr::test
