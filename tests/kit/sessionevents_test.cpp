#include "kit/sessionevents.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>
#include <array>
#include <optional>
#include <vector>

namespace bmr::kit {
namespace {

const QString kLogin = "org.freedesktop.login1";
const QString kManager = "org.freedesktop.login1.Manager";
const QString kSession = "org.freedesktop.login1.Session";
const QString kSaver = "org.freedesktop.ScreenSaver";
const QString kOurs = "/org/freedesktop/login1/session/_37";

/// A login service and a screen saver on a bus of the test's own.
class FakeDesktop final : public QDBusVirtualObject {
  public:
    explicit FakeDesktop(const QString& address) : bus(QDBusConnection::connectToBus(address, "bmr-fake")) {
        bus.registerVirtualObject("/", this, QDBusConnection::SubPath);
        EXPECT_TRUE(bus.registerService(kLogin));
        EXPECT_TRUE(bus.registerService(kSaver));
    }
    ~FakeDesktop() override {
        if (delayed >= 0) close(delayed);
        bus.unregisterService(kLogin);
        bus.unregisterService(kSaver);
        QDBusConnection::disconnectFromBus("bmr-fake");
    }
    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override {
        calls << call.member();
        if (call.member() == "Inhibit") {
            EXPECT_EQ(call.arguments().value(0), "sleep");
            EXPECT_EQ(call.arguments().value(3), "delay");
            int ends[2];
            if (pipe(ends) != 0) return false;
            if (delayed >= 0) close(delayed);
            delayed = ends[0];
            const QDBusUnixFileDescriptor given(ends[1]);
            close(ends[1]);
            return connection.send(call.createReply(QVariant::fromValue(given)));
        }
        if (call.member() == "GetSession" && call.arguments().value(0) == "auto")
            return connection.send(call.createReply(QVariant::fromValue(QDBusObjectPath(kOurs))));
        return connection.send(call.createErrorReply(kLogin + ".NoSessionForPID", "none"));
    }

    void Send(const QString& path, const QString& interface, const QString& name,
              const QVariantList& what = {}) {
        QDBusMessage signal = QDBusMessage::createSignal(path, interface, name);
        signal.setArguments(what);
        bus.send(signal);
    }
    /// Whether somebody still holds the sleep up.
    bool Held() const {
        pollfd end{delayed, POLLIN, 0};
        return delayed >= 0 && poll(&end, 1, 0) == 0;
    }

    QDBusConnection bus;
    QStringList calls;
    int delayed = -1;
};

struct SessionEventsTest : testing::Test {
    void SetUp() override {
        const QString daemon = QStandardPaths::findExecutable("dbus-daemon");
        if (daemon.isEmpty()) GTEST_SKIP() << "dbus-daemon is not installed";
        process.start(daemon, {"--session", "--nofork", "--nopidfile", "--print-address=1"});
        ASSERT_TRUE(process.waitForReadyRead(10000)) << process.readAllStandardError().toStdString();
        address = process.readLine().trimmed();
        for (const char* name : kEnvironment)
            before.push_back(qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name)) : std::nullopt);
        Use(address);
        qunsetenv("XDG_SESSION_ID");
        desktop = std::make_unique<FakeDesktop>(address);
        events = std::make_unique<SessionEvents>();
        QObject::connect(events.get(), &SessionEvents::Suspending, [this] { ++suspended; });
        QObject::connect(events.get(), &SessionEvents::Locked, [this] { ++locked; });
    }
    void TearDown() override {
        events.reset();
        desktop.reset();
        process.kill();
        process.waitForFinished();
        for (std::size_t i = 0; i < before.size(); ++i) {
            if (before[i])
                qputenv(kEnvironment[i], *before[i]);
            else
                qunsetenv(kEnvironment[i]);
        }
    }
    static void Use(const QByteArray& bus) {
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", bus);
        qputenv("DBUS_SESSION_BUS_ADDRESS", bus);
    }
    void PropertyTold(const QString& path, bool on) {
        desktop->Send(path, "org.freedesktop.DBus.Properties", "PropertiesChanged",
                      {kSession, QVariantMap{{"LockedHint", on}}, QStringList()});
    }
    /// Until every answer has come and the bus knows what is listened to.
    void Settle() {
        ASSERT_TRUE(
            QTest::qWaitFor([this] { return events->findChildren<QDBusPendingCallWatcher*>().isEmpty(); }));
        events->Offer();
    }
    /// Signals of one sender come in order: after this all that was sent before has come.
    void LockAndWait(int count) {
        desktop->Send(kOurs, kSession, "Lock");
        EXPECT_TRUE(QTest::qWaitFor([this, count] { return locked >= count; }));
        EXPECT_EQ(locked, count);
    }

    static constexpr std::array<const char*, 3> kEnvironment{"DBUS_SYSTEM_BUS_ADDRESS",
                                                             "DBUS_SESSION_BUS_ADDRESS", "XDG_SESSION_ID"};
    std::vector<std::optional<QByteArray>> before;  ///< what the test found there
    QProcess process;
    QByteArray address;
    std::unique_ptr<FakeDesktop> desktop;
    std::unique_ptr<SessionEvents> events;
    int suspended = 0;
    int locked = 0;
};

TEST_F(SessionEventsTest, TheSleepIsToldAndWaits) {
    events->Want(true, false);
    ASSERT_TRUE(QTest::qWaitFor([this] { return desktop->Held(); }));
    desktop->Send("/org/freedesktop/login1", kManager, "PrepareForSleep", {false});
    desktop->Send("/org/freedesktop/login1", kManager, "PrepareForSleep", {true});
    ASSERT_TRUE(QTest::qWaitFor([this] { return suspended > 0; }));
    EXPECT_EQ(suspended, 1);
    EXPECT_TRUE(desktop->Held()) << "until the process has gone";
    EXPECT_EQ(locked, 0);

    events->Want(false, false);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !desktop->Held(); })) << "who wants nothing delays nobody";
    desktop->Send("/org/freedesktop/login1", kManager, "PrepareForSleep", {true});
    events->Want(false, true);
    Settle();
    LockAndWait(1);
    EXPECT_EQ(suspended, 1);
}

TEST_F(SessionEventsTest, OnlyTheLockOfOurOwnSessionIsTold) {
    events->Want(false, true);
    Settle();
    EXPECT_EQ(desktop->calls.first(), "GetSessionByPID");
    desktop->Send("/org/freedesktop/login1/session/_38", kSession, "Lock");
    PropertyTold("/org/freedesktop/login1/session/_38", true);
    PropertyTold(kOurs, false);
    LockAndWait(1);
    PropertyTold(kOurs, true);
    LockAndWait(3);
    EXPECT_FALSE(desktop->calls.contains("Inhibit"));

    desktop->Send("/ScreenSaver", kSaver, "ActiveChanged", {false});
    desktop->Send("/ScreenSaver", kSaver, "ActiveChanged", {true});
    ASSERT_TRUE(QTest::qWaitFor([this] { return locked > 3; }));
    EXPECT_EQ(locked, 4);
}

TEST_F(SessionEventsTest, OffersWhatTheBusServesAndLivesWithoutIt) {
    EXPECT_TRUE(events->Offer().suspend);
    EXPECT_TRUE(events->Offer().lock);
    desktop->bus.unregisterService(kLogin);
    EXPECT_FALSE(events->Offer().suspend);
    EXPECT_TRUE(events->Offer().lock) << "the screen saver tells";
    desktop->bus.unregisterService(kSaver);
    EXPECT_FALSE(events->Offer().lock);
    EXPECT_TRUE(desktop->calls.isEmpty()) << "to ask is not to listen";

    Use("unix:path=/nonexistent/bus");
    SessionEvents alone;
    EXPECT_FALSE(alone.Offer().suspend);
    EXPECT_FALSE(alone.Offer().lock);
    alone.Want(true, true);
    alone.Want(false, false);
}

}  // namespace
}  // namespace bmr::kit
