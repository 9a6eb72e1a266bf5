#pragma once

#include <filesystem>
#include <functional>
#include <string_view>

#include "base/result.h"
#include "store/session.h"

namespace bmr::address {

/// Writes what `next` gives until it gives an empty text to a file that takes the place of `path` in one
/// step, once all is on the disk. Only its owner may read it. On an error, which may be one of `next`,
/// nothing has changed.
Result<bool> ReplaceFile(store::Session& session, const std::filesystem::path& path,
                         const std::function<Result<std::string_view>()>& next);

}  // namespace bmr::address
