#pragma once

#include <QList>
#include <QObject>
#include <QTimer>
#include <string>

#include "base/ports.h"

class QSplitter;

namespace bmr::kit {

/// A value of the window that is found again at the next start: "Window/..." outside the file, as it tells
/// nothing of the data. What changes with every pixel of a drag is written when the drag rests, at the latest
/// when this goes.
class Remembered final : public QObject {
    Q_OBJECT

  public:
    Remembered(Registry& registry, const std::string& name, QObject* parent);
    ~Remembered() override;

    /// Empty when nothing was kept. Anybody may have written it: judge before use.
    std::string Value() const { return registry_.Read(name_); }
    /// The same, as numbers that stand apart by commas; empty when a part is none.
    QList<int> Numbers() const;
    void Keep(std::string value);
    void Keep(const QList<int>& numbers);

  private:
    void Write();

    Registry& registry_;
    std::string name_;
    std::string pending_;
    QTimer rest_;
};

/// The parts of a splitter have the sizes that they had, under that name. Call once its parts are in.
void RememberSplitter(QSplitter& splitter, Registry& registry, const std::string& name);

}  // namespace bmr::kit
