#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <string>

namespace bmr::test {

/// Stands behind every form test, whatever its fixture. A dialog or menu that nobody works is closed and
/// fails the test, which would wait for ever; so does a window that still stands at the end. What a test
/// leaves in the application does not reach the next one.
class WindowWatch final : public testing::EmptyTestEventListener {
  public:
    WindowWatch() {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Look(); });
    }

  private:
    static constexpr int kTick = 100;
    static constexpr int kPatience = 10000;  ///< ms; some tests work a window by their own means, and slowly

    void OnTestStart(const testing::TestInfo&) override {
        stands_ = nullptr;
        timer_.start(kTick);
    }
    void OnTestEnd(const testing::TestInfo&) override {
        timer_.stop();
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (!window->isVisible()) continue;
            ADD_FAILURE() << "left open: " << Describe(*window);
            window->hide();
        }
        EXPECT_FALSE(QApplication::overrideCursor()) << "the cursor still tells to wait";
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QApplication::clipboard()->clear();
        for (const QByteArray& name : qApp->dynamicPropertyNames())
            qApp->setProperty(name, {});
        // A program that ended in the test has told every later loop of the thread to end at once.
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QCoreApplication::exec();
    }
    void Look() {
        QWidget* popup = QApplication::activePopupWidget();
        QWidget* window = popup ? popup : QApplication::activeModalWidget();
        if (window != stands_) {
            stands_ = window;
            since_.start();
        }
        if (!window || since_.elapsed() < kPatience) return;
        ADD_FAILURE() << "nobody expected " << Describe(*window);
        stands_ = nullptr;
        window->close();
    }
    static std::string Describe(const QWidget& window) {
        return std::string(window.metaObject()->className()) + " \"" + window.objectName().toStdString() +
               "\" " + window.windowTitle().toStdString();
    }

    QTimer timer_;
    QWidget* stands_ = nullptr;
    QElapsedTimer since_;
};

}  // namespace bmr::test
