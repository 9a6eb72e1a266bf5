#include "app/registry.h"

#include <QFile>
#include <QString>

namespace bmr::app {

QtRegistry::QtRegistry() : settings_("Tolvane", "Brindlemere") {
    // What an administrator or another program of the same maker has set is not our last file.
    settings_.setFallbacksEnabled(false);
}

std::string QtRegistry::Read(const std::string& name) const {
    return settings_.value(QString::fromStdString(name)).toString().toStdString();
}

void QtRegistry::Write(const std::string& name, const std::string& value) {
    settings_.setValue(QString::fromStdString(name), QString::fromStdString(value));
    settings_.sync();
#ifndef Q_OS_WIN
    QFile::setPermissions(settings_.fileName(), QFile::ReadOwner | QFile::WriteOwner);
#endif
}

}  // namespace bmr::app
