#include "kit/categorycombo.h"

#include <QComboBox>
#include <QPainter>
#include <QSignalBlocker>

#include "kit/icons.h"
#include "kit/theme.h"
#include "kit/words.h"

namespace bmr::kit {

void FillCategoryCombo(QComboBox& combo, const store::CategoryList& list) {
    const QSignalBlocker quiet(combo);
    combo.clear();
    for (const store::CategoryEntry& entry : list) {
        const bool fixed = entry.number == store::Category::All || entry.number == store::Category::Edit;
        if (entry.number == store::Category::Edit && combo.count() > 0) combo.insertSeparator(combo.count());
        QIcon icon;
        if (!fixed) icon = CategoryIcon(entry.number, combo.palette());
        if (entry.number == store::Category::Edit) icon = Icon("configure");
        if (entry.number == store::Category::All) icon = Icon("view-list-details");
        // The blanks in front of a name only serve the order of the entries.
        combo.addItem(icon, ToQString(TrimBlanks(entry.text)), entry.number);
    }
    combo.setCurrentIndex(combo.count() > 0 ? 0 : -1);
}

std::int32_t SelectedCategory(const QComboBox& combo) {
    const QVariant number = combo.currentIndex() < 0 ? combo.itemData(0) : combo.currentData();
    return number.isValid() ? number.toInt() : store::Category::All;
}

bool SelectCategory(QComboBox& combo, std::int32_t number) {
    const QSignalBlocker quiet(combo);
    const int place = combo.findData(number);
    combo.setCurrentIndex(place >= 0 ? place : combo.count() > 0 ? 0 : -1);
    return place >= 0;
}

QIcon CategoryIcon(std::int32_t number, const QPalette& palette) {
    const Tint tint = CategoryTint(number, palette);
    const bool unfiled = number == store::Category::Unfiled;
    QIcon icon;
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Selected})
        for (const int ratio : {1, 2, 3}) {
            QPixmap pixmap(16 * ratio, 16 * ratio);
            pixmap.setDevicePixelRatio(ratio);
            pixmap.fill(Qt::transparent);
            QPainter painter(&pixmap);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(unfiled ? QPen(tint.stripe, 1) : QPen(Qt::NoPen));
            if (mode == QIcon::Selected)  // the ground may have the same colour
                painter.setPen(QPen(palette.color(QPalette::Active, QPalette::HighlightedText), 1));
            painter.setBrush(unfiled ? tint.ground : tint.stripe);
            painter.drawRoundedRect(QRectF(3.5, 3.5, 9, 9), 2.5, 2.5);
            icon.addPixmap(pixmap, mode);
        }
    return icon;
}

}  // namespace bmr::kit
