#include "app/windowmemory.h"

#include <QByteArray>
#include <QWidget>
#include <string>

#include "base/ports.h"

namespace bmr::app {

namespace {

constexpr const char* kPlace = "Window/Place";
constexpr const char* kTheme = "Window/Theme";

void Keep(Registry& registry, const std::string& name, const std::string& value) {
    if (registry.Read(name) != value) registry.Write(name, value);
}

}  // namespace

bool RecallPlace(const Registry& registry, QWidget& window) {
    return window.restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(registry.Read(kPlace))));
}

void RememberPlace(Registry& registry, const QWidget& window) {
    Keep(registry, kPlace, window.saveGeometry().toBase64().toStdString());
}

QString RememberedTheme(const Registry& registry) {
    return QString::fromStdString(registry.Read(kTheme));
}

void RememberTheme(Registry& registry, const QString& name) {
    Keep(registry, kTheme, name.toStdString());
}

bool RecallSwitch(const Registry& registry, const char* name, bool otherwise) {
    const std::string value = registry.Read(std::string("Window/") + name);
    return value == "1" || (value != "0" && otherwise);
}

void RememberSwitch(Registry& registry, const char* name, bool on) {
    Keep(registry, std::string("Window/") + name, on ? "1" : "0");
}

}  // namespace bmr::app
