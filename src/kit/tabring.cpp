#include "kit/tabring.h"

#include <QLayout>
#include <QScrollArea>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <algorithm>
#include <vector>

namespace bmr::kit {

namespace {

using Ring = std::vector<QWidget*>;

void Gather(QWidget* widget, const QWidget* now, Ring& ring);

void Gather(QLayout& layout, const QWidget* now, Ring& ring) {
    for (int at = 0; QLayoutItem* item = layout.itemAt(at); ++at) {
        if (QWidget* widget = item->widget())
            Gather(widget, now, ring);
        else if (QLayout* inner = item->layout())
            Gather(*inner, now, ring);
    }
}

void Gather(QWidget* widget, const QWidget* now, Ring& ring) {
    if (!widget || !widget->isVisible() || !widget->isEnabled()) return;
    // What hands its focus on is no stop of its own. A click may have led to what Tab passes by.
    const bool stop = !widget->focusProxy() && (widget->focusPolicy() & Qt::TabFocus);
    if (stop || widget == now) ring.push_back(widget);
    if (auto* area = qobject_cast<QScrollArea*>(widget)) return Gather(area->widget(), now, ring);
    if (auto* splitter = qobject_cast<QSplitter*>(widget)) {
        for (int at = 0; at < splitter->count(); ++at)
            Gather(splitter->widget(at), now, ring);
    } else if (auto* tabs = qobject_cast<QTabWidget*>(widget)) {
        Gather(tabs->tabBar(), now, ring);
        Gather(tabs->currentWidget(), now, ring);
    } else if (widget->layout()) {
        Gather(*widget->layout(), now, ring);
    }
}

}  // namespace

bool StepFocus(QWidget& window, bool next) {
    QWidget* now = window.focusWidget();
    Ring ring;
    Gather(&window, now, ring);
    if (!next) std::ranges::reverse(ring);
    if (ring.empty()) return false;
    auto at = std::ranges::find(ring, now);
    if (at == ring.end() || ++at == ring.end()) at = ring.begin();
    (*at)->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

}  // namespace bmr::kit
