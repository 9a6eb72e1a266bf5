#include "kit/icons.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <utility>

#include "store/sections.h"

// Outside every namespace, as the macro asks: a static library's resources are only linked when they are
// named.
static void LoadIconResources() {
    Q_INIT_RESOURCE(icons);
}

namespace bmr::kit {

namespace {

QString PathOf(const QString& name) {
    static const bool loaded = (LoadIconResources(), true);
    Q_UNUSED(loaded);
    return ":/icons/brindlemere/" + name + ".svg";
}

/// Renders an outline with "currentColor" replaced by an ink of the application's palette, each time anew, so
/// that a change of theme needs no new icons.
class OutlineEngine final : public QIconEngine {
  public:
    OutlineEngine(QString name, std::optional<Ink> ink) : name_(std::move(name)), ink_(ink) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        Render(*painter, rect, ColourOf(mode));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        const QColor colour = ColourOf(mode);
        const QString key =
            QString("bmr/%1/%2x%3/%4").arg(name_).arg(size.width()).arg(size.height()).arg(colour.rgba());
        QPixmap pixmap;
        if (!QPixmapCache::find(key, &pixmap)) {
            pixmap = QPixmap(size);
            pixmap.fill(Qt::transparent);
            QPainter painter(&pixmap);
            Render(painter, QRect(QPoint(0, 0), size), colour);
            QPixmapCache::insert(key, pixmap);
        }
        return pixmap;
    }

    QIconEngine* clone() const override { return new OutlineEngine(name_, ink_); }
    QString key() const override { return "bmr-outline"; }
    QString iconName() override { return name_; }
    bool isNull() override { return false; }

  private:
    QColor ColourOf(QIcon::Mode mode) const {
        const QPalette palette = QApplication::palette();
        switch (mode) {
            case QIcon::Disabled:
                return palette.color(QPalette::Disabled, QPalette::ButtonText);
            case QIcon::Selected:
                return palette.color(QPalette::Active, QPalette::HighlightedText);
            default:
                break;
        }
        return ink_ ? InkOf(*ink_, palette) : palette.color(QPalette::Active, QPalette::ButtonText);
    }

    void Render(QPainter& painter, const QRect& rect, const QColor& colour) const {
        QFile file(PathOf(name_));
        if (!file.open(QIODevice::ReadOnly)) return;
        QSvgRenderer renderer(file.readAll().replace("currentColor", colour.name().toLatin1()));
        const int side = qMin(rect.width(), rect.height());
        QRectF square(0, 0, side, side);
        square.moveCenter(QRectF(rect).center());
        renderer.render(&painter, square);
    }

    QString name_;
    std::optional<Ink> ink_;
};

}  // namespace

QIcon Icon(const QString& name, std::optional<Ink> ink) {
    if (!QFile::exists(PathOf(name))) return {};
    return QIcon(new OutlineEngine(name, ink));
}

QIcon SectionIcon(std::uint8_t section) {
    const auto* facts = store::FactsOf(section);
    return facts ? Icon(QString::fromUtf8(facts->icon.data(), static_cast<qsizetype>(facts->icon.size())))
                 : QIcon();
}

QIcon ProgramIcon() {
    return QIcon(PathOf("brindlemere"));
}

}  // namespace bmr::kit
