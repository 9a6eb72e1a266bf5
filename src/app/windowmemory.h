#pragma once

#include <QString>

class QWidget;

namespace bmr {
class Registry;
}

namespace bmr::app {

/// What the main window finds again at the next start, outside the file, below "Window/". Anybody may have
/// written these values: what is none counts as absent.

/// Size and place, or that it filled the screen. False when nothing is kept.
bool RecallPlace(const Registry& registry, QWidget& window);
void RememberPlace(Registry& registry, const QWidget& window);

/// "light", "dark", "contrast" or "system".
QString RememberedTheme(const Registry& registry);
void RememberTheme(Registry& registry, const QString& name);

/// A switch of the window: "Folded", "ToolbarText".
bool RecallSwitch(const Registry& registry, const char* name, bool otherwise);
void RememberSwitch(Registry& registry, const char* name, bool on);

}  // namespace bmr::app
