#include "app/hardening.h"

#ifdef __linux__
#include <sys/prctl.h>
#endif
#if defined(__unix__) || defined(__APPLE__)
#include <sys/resource.h>
#include <sys/stat.h>
#endif

namespace bmr::app {

void HardenProcess() {
#if defined(__unix__) || defined(__APPLE__)
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    umask(S_IRWXG | S_IRWXO);
#endif
#ifdef __linux__
    // Also takes /proc/self/mem and ptrace from other processes of the same user.
    prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
#endif
}

}  // namespace bmr::app
