#include "kit/fontwarmup.h"

#ifdef BMR_HAVE_FONTCONFIG
#include <fontconfig/fontconfig.h>

#include <system_error>
#endif

namespace bmr::kit {

FontWarmUp::FontWarmUp() {
#ifdef BMR_HAVE_FONTCONFIG
    try {
        reader_ = std::thread([] { FcInit(); });
    } catch (const std::system_error&) {
        // No thread to be had: the reading happens later, at the first text.
    }
#endif
}

void FontWarmUp::Join() {
    if (reader_.joinable()) reader_.join();
}

}  // namespace bmr::kit
