#pragma once

#include "base/ports.h"

namespace bmr::kit {

/// Web pages, mail and telephone through the handlers that the desktop has for them.
class QtDesktop final : public Desktop {
  public:
    bool OpenWeb(const std::string& url) override;
    bool OpenMail(const std::string& address) override;
    bool Dial(const std::string& number, const std::string& name) override;
};

}  // namespace bmr::kit
