#pragma once

#include <QObject>

namespace bmr::app {

/// Turns the signals by which a terminal or the end of a desktop session stops a program into an event, so
/// that it closes its database and wipes its keys instead of being cut off. One object at a time.
class SignalWatch final : public QObject {
    Q_OBJECT

  public:
    SignalWatch();
    ~SignalWatch() override;

  signals:
    void Asked();
};

}  // namespace bmr::app
