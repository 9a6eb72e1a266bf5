#include <QDBusConnection>
#include <QDBusMessage>
#include <QLineEdit>
#include <QProcess>
#include <QRegularExpression>

#include "crypto/systemrandom.h"
#include "kit/frmPW.h"
#include "kit/guards.h"
#include "kit/keycapture.h"
#include "kit/secretedit.h"
#include "kit/x11/xclient.h"
#include "support/forms.h"
#include "support/guards.h"
#include "support/ports.h"

namespace bmr::kit {
namespace {

using namespace test;

/// A program of the same user that reads all that goes over the accessibility bus.
class BusListener {
  public:
    explicit BusListener(const QString& bus) {
        monitor_.setProcessChannelMode(QProcess::MergedChannels);
        monitor_.start("dbus-monitor", {"--address", bus});
        monitor_.waitForStarted();
        // The applications tell only what somebody has asked for, and as long as that one is there.
        auto asking = QDBusConnection::connectToBus(bus, kName);
        for (const char* event : {"object:text-changed", "object:property-change", "window:activate"}) {
            auto call = QDBusMessage::createMethodCall("org.a11y.atspi.Registry", "/org/a11y/atspi/registry",
                                                       "org.a11y.atspi.Registry", "RegisterEvent");
            call << QString(event) << QStringList() << QString();
            asking.call(call);
        }
        Live(300);
        Forget();
    }
    ~BusListener() {
        monitor_.terminate();
        monitor_.waitForFinished();
        QDBusConnection::disconnectFromBus(kName);
    }
    void Forget() { monitor_.readAll(); }
    /// The single characters that went over the bus since then: keys and pieces of text.
    QString Heard() {
        Live(300);
        const QString all = QString::fromUtf8(monitor_.readAll());
        static const QRegularExpression kCharacter("string \"([A-Za-z0-9])\"");
        QString heard;
        for (auto found = kCharacter.globalMatch(all); found.hasNext();)
            heard += found.next().captured(1);
        return heard;
    }

  private:
    static constexpr const char* kName = "listener";
    QProcess monitor_;
};

TEST(AccessibilityBus, HearsTheOpenFieldsAndNothingOfThePrompt) {
    const QString bus = qEnvironmentVariable("BMR_TEST_BUS");
    if (bus.isEmpty()) GTEST_SKIP() << "no accessibility bus here";
    BusListener listener(bus);
    Typist typist;
    const auto type = [&typist](const std::string& text) {
        std::thread hands([&] { typist.Type(text, 60); });
        Live(static_cast<int>(text.size()) * 60 + 150);
        hands.join();
    };

    GuardedDialog open;
    open.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&open));
    type("qx");
    const QString heard = listener.Heard();
    EXPECT_GE(heard.count('q'), 2) << "screen readers get the key and the text of an open field: "
                                   << heard.toStdString();
    open.hide();

    FixedClock clock;
    cry::SystemRandom random;
    ScriptedPrompter boxes;
    const auto port = MakeKeyPort();
    ClipboardGuard clip(*QApplication::clipboard(), random, clock);
    Guards guards(*port, random, clip);
    frmPW prompt({"Database", "Passphrase", false, false, false}, boxes);
    guards.GuardPrompt(prompt);
    prompt.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&prompt));
    Live(250);
    listener.Forget();
    type("secret7");
    EXPECT_EQ(prompt.InputBox()->Content(), "secret7");
    EXPECT_EQ(listener.Heard(), "");
}

}  // namespace
}  // namespace bmr::kit
