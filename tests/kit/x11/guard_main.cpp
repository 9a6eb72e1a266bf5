#include <gmock/gmock.h>

#include <QFont>
#include <QLocale>
#include <QTest>
#include <QWidget>

#include "kit/guardedapplication.h"

namespace {

/// Without a window manager no window gets the focus; one that is still starting may miss the first.
bool ManagerCame() {
    for (int i = 0; i < 10; ++i) {
        QWidget window;
        window.show();
        if (QTest::qWaitForWindowActive(&window, 1000)) return true;
    }
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    const bmr::kit::GuardedApplication app(argc, argv);
    QApplication::setStyle("Fusion");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    if (!ManagerCame()) {
        std::puts("no window manager came up");
        return 1;
    }
    return RUN_ALL_TESTS();
}
