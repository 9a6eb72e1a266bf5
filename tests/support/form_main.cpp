#include <gmock/gmock.h>

#include <QLocale>

#include "kit/guardedapplication.h"
#include "support/windowwatch.h"

/// Form tests share one application and one locale, so that dates and order do not depend on the machine.
int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleMock(&argc, argv);
    const bmr::kit::GuardedApplication app(argc, argv);
    QApplication::setStyle("Fusion");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    bmr::test::WindowWatch watch;
    testing::TestEventListeners& listeners = testing::UnitTest::GetInstance()->listeners();
    listeners.Append(&watch);
    const int result = RUN_ALL_TESTS();
    listeners.Release(&watch);
    return result;
}
