#include "kit/sessionevents.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QDBusUnixFileDescriptor>
#include <QFile>

namespace bmr::kit {
namespace {

const QString kLogin = QStringLiteral("org.freedesktop.login1");
const QString kLoginPath = QStringLiteral("/org/freedesktop/login1");
const QString kManager = QStringLiteral("org.freedesktop.login1.Manager");
const QString kSession = QStringLiteral("org.freedesktop.login1.Session");
const QStringList kScreenSavers{QStringLiteral("org.freedesktop.ScreenSaver"),
                                QStringLiteral("org.gnome.ScreenSaver")};
constexpr int kPatience = 500;  ///< ms for an answer of the bus itself

QDBusMessage ToManager(const char* method, const QVariantList& arguments) {
    QDBusMessage call = QDBusMessage::createMethodCall(kLogin, kLoginPath, kManager, method);
    call.setArguments(arguments);
    return call;
}

template <class Answer>
Answer AskBus(const QDBusConnection& bus, const char* method, const QVariantList& arguments = {}) {
    QDBusMessage call =
        QDBusMessage::createMethodCall("org.freedesktop.DBus", "/", "org.freedesktop.DBus", method);
    call.setArguments(arguments);
    return QDBusReply<Answer>(bus.call(call, QDBus::Block, kPatience)).value();
}

/// Whether a service runs, or would be started by a call.
bool Serves(const QDBusConnection& bus, const QString& service) {
    return bus.isConnected() && (AskBus<bool>(bus, "NameHasOwner", {service}) ||
                                 AskBus<QStringList>(bus, "ListActivatableNames").contains(service));
}

/// The address in the environment is looked at anew; the toolkit would keep the first one for ever.
QDBusConnection SystemBus(const QString& name) {
    const QString address = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
    return address.isEmpty() ? QDBusConnection::connectToBus(QDBusConnection::SystemBus, name)
                             : QDBusConnection::connectToBus(address, name);
}

/// Only a bus that is there already: without an address the toolkit would start one.
QDBusConnection UserBus(const QString& name) {
    QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    const QString usual = qEnvironmentVariable("XDG_RUNTIME_DIR") + "/bus";
    if (address.isEmpty() && QFile::exists(usual)) address = "unix:path=" + usual;
    return address.isEmpty() ? QDBusConnection(name) : QDBusConnection::connectToBus(address, name);
}

}  // namespace

struct SessionEvents::Bus {
    explicit Bus(const void* owner)
        : systemName(QString("bmr-system-%1").arg(reinterpret_cast<quintptr>(owner))),
          userName(QString("bmr-user-%1").arg(reinterpret_cast<quintptr>(owner))),
          system(SystemBus(systemName)),
          user(UserBus(userName)) {}
    ~Bus() {
        QDBusConnection::disconnectFromBus(systemName);
        QDBusConnection::disconnectFromBus(userName);
    }
    QString systemName;
    QString userName;
    QDBusConnection system;
    QDBusConnection user;
    QDBusUnixFileDescriptor delay;  ///< while it is open, the machine waits with its sleep
    bool sleepHeard = false;
    bool lockHeard = false;
};

SessionEvents::SessionEvents(QObject* parent) : QObject(parent) {}

SessionEvents::~SessionEvents() = default;

SessionOffer SessionEvents::Offer() {
    if (!bus_) bus_ = std::make_unique<Bus>(this);
    const bool login = Serves(bus_->system, kLogin);
    bool saver = false;
    for (const QString& service : kScreenSavers)
        saver = saver || Serves(bus_->user, service);
    return {login, login || saver};
}

void SessionEvents::Want(bool suspend, bool lock) {
    suspend_ = suspend;
    lock_ = lock;
    if (!suspend && bus_) bus_->delay = {};
    if (!suspend && !lock) return;
    if (!bus_) bus_ = std::make_unique<Bus>(this);
    if (suspend) ListenToLogin();
    if (lock && !std::exchange(bus_->lockHeard, true)) {
        QStringList ways{QString(), "auto"};
        if (const QString id = qEnvironmentVariable("XDG_SESSION_ID"); !id.isEmpty()) ways.prepend(id);
        FindSession(ways);
        ListenToScreenSaver();
    }
}

void SessionEvents::ListenToLogin() {
    if (!bus_->system.isConnected()) return;
    if (!std::exchange(bus_->sleepHeard, true))
        bus_->system.connect(kLogin, kLoginPath, kManager, "PrepareForSleep", this,
                             SLOT(PrepareForSleep(bool)));
    if (!bus_->delay.isValid()) DelaySleep();
}

void SessionEvents::ListenToScreenSaver() {
    if (!bus_->user.isConnected()) return;
    for (const QString& service : kScreenSavers)
        bus_->user.connect(service, QString(), service, "ActiveChanged", this, SLOT(ActiveChanged(bool)));
}

/// The first of `ways` that the login service knows is our session: a name, or the empty one for the session
/// of this process. A program that the desktop's service manager started has none of its own: "auto".
void SessionEvents::FindSession(QStringList ways) {
    if (ways.isEmpty() || !bus_->system.isConnected()) return;
    const QString id = ways.takeFirst();
    const auto pid = static_cast<quint32>(QCoreApplication::applicationPid());
    const QDBusMessage call =
        id.isEmpty() ? ToManager("GetSessionByPID", {pid}) : ToManager("GetSession", {id});
    auto* watcher = new QDBusPendingCallWatcher(bus_->system.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, ways] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
        if (reply.isError())
            FindSession(ways);
        else
            HearSession(reply.value().path());
    });
}

void SessionEvents::HearSession(const QString& path) {
    bus_->system.connect(kLogin, path, kSession, "Lock", this, SLOT(Lock()));
    // A desktop that locks by itself only leaves this hint.
    bus_->system.connect(kLogin, path, "org.freedesktop.DBus.Properties", "PropertiesChanged", this,
                         SLOT(PropertiesChanged(QString, QVariantMap, QStringList)));
}

void SessionEvents::DelaySleep() {
    const QDBusMessage call =
        ToManager("Inhibit", {"sleep", "Brindlemere", "The database is being closed", "delay"});
    auto* watcher = new QDBusPendingCallWatcher(bus_->system.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *watcher;
        if (!reply.isError() && suspend_) bus_->delay = reply.value();
    });
}

void SessionEvents::PrepareForSleep(bool start) {
    if (!suspend_) return;
    // The delay is held until the process has gone: dialogs may still have to unwind before the file closes.
    if (start)
        emit Suspending();
    else
        DelaySleep();
}

void SessionEvents::Lock() {
    if (lock_) emit Locked();
}

void SessionEvents::PropertiesChanged(const QString& interface, const QVariantMap& changed,
                                      const QStringList&) {
    if (interface == kSession && changed.value("LockedHint").toBool()) Lock();
}

void SessionEvents::ActiveChanged(bool active) {
    if (active) Lock();
}

}  // namespace bmr::kit
