// For a build without the message bus: nothing is offered and nothing is ever told.
#include "kit/sessionevents.h"

namespace bmr::kit {

struct SessionEvents::Bus {};

SessionEvents::SessionEvents(QObject* parent) : QObject(parent) {}
SessionEvents::~SessionEvents() = default;
SessionOffer SessionEvents::Offer() {
    return {};
}
void SessionEvents::Want(bool suspend, bool lock) {
    suspend_ = suspend;
    lock_ = lock;
}
void SessionEvents::PrepareForSleep(bool) {}
void SessionEvents::Lock() {}
void SessionEvents::PropertiesChanged(const QString&, const QVariantMap&, const QStringList&) {}
void SessionEvents::ActiveChanged(bool) {}

}  // namespace bmr::kit
