#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <memory>

namespace bmr::kit {

/// What a machine can tell of itself.
struct SessionOffer {
    bool suspend = false;
    bool lock = false;
};

/// Tells that the machine is about to sleep and that the user's session was locked. On Linux by the login
/// service and the screen saver, over the message bus; where there is none, nothing is ever told.
class SessionEvents final : public QObject {
    Q_OBJECT

  public:
    explicit SessionEvents(QObject* parent = nullptr);
    ~SessionEvents() override;

    /// What can be told here. Asks the bus, for half a second at most.
    SessionOffer Offer();

    /// What is to be told from now on. Nothing is connected, asked or held before it is wanted.
    void Want(bool suspend, bool lock);

  signals:
    /// The machine is about to sleep. It waits a few seconds for the program to end.
    void Suspending();
    void Locked();

  private slots:
    void PrepareForSleep(bool start);
    void Lock();
    void PropertiesChanged(const QString& interface, const QVariantMap& changed, const QStringList& dropped);
    void ActiveChanged(bool active);

  private:
    void ListenToLogin();
    void ListenToScreenSaver();
    void FindSession(QStringList ways);
    void HearSession(const QString& path);
    void DelaySleep();

    struct Bus;
    std::unique_ptr<Bus> bus_;
    bool suspend_ = false;
    bool lock_ = false;
};

}  // namespace bmr::kit
