#pragma once

#include <QSettings>
#include <string>

#include "base/ports.h"

namespace bmr::app {

/// The values outside the file, below "Tolvane/Brindlemere" of the user's own settings. On Windows these are
/// the values of the registry; elsewhere a file that only its owner may read, as a path tells something too.
class QtRegistry final : public Registry {
  public:
    QtRegistry();
    std::string Read(const std::string& name) const override;
    void Write(const std::string& name, const std::string& value) override;

  private:
    QSettings settings_;
};

}  // namespace bmr::app
