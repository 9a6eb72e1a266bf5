#include "kit/remembered.h"

#include <QSplitter>
#include <QStringList>
#include <algorithm>

namespace bmr::kit {

Remembered::Remembered(Registry& registry, const std::string& name, QObject* parent)
    : QObject(parent), registry_(registry), name_("Window/" + name) {
    rest_.setSingleShot(true);
    rest_.setInterval(500);
    connect(&rest_, &QTimer::timeout, this, &Remembered::Write);
}

Remembered::~Remembered() {
    if (rest_.isActive()) Write();
}

QList<int> Remembered::Numbers() const {
    QList<int> numbers;
    for (const QString& part : QString::fromStdString(Value()).split(',')) {
        bool good = false;
        numbers << part.toInt(&good);
        if (!good) return {};
    }
    return numbers;
}

void Remembered::Keep(std::string value) {
    pending_ = std::move(value);
    rest_.start();
}

void Remembered::Keep(const QList<int>& numbers) {
    QStringList parts;
    for (const int number : numbers)
        parts << QString::number(number);
    Keep(parts.join(',').toStdString());
}

void Remembered::Write() {
    rest_.stop();
    if (registry_.Read(name_) != pending_) registry_.Write(name_, pending_);
}

void RememberSplitter(QSplitter& splitter, Registry& registry, const std::string& name) {
    auto* kept = new Remembered(registry, "Splitter/" + name, &splitter);
    const QList<int> sizes = kept->Numbers();
    if (sizes.size() == splitter.count() &&
        std::ranges::all_of(sizes, [](int size) { return size > 0 && size < 32000; }))
        splitter.setSizes(sizes);
    QObject::connect(&splitter, &QSplitter::splitterMoved, kept,
                     [kept, &splitter] { kept->Keep(splitter.sizes()); });
}

}  // namespace bmr::kit
