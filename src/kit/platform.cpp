#include "kit/platform.h"

#include <QGuiApplication>

namespace bmr::kit {

std::unique_ptr<KeyPort> MakeKeyPort() {
    std::unique_ptr<KeyPort> port;
    if (qEnvironmentVariable("BRINDLEMERE_KEYPORT") != "post") {
#ifdef BMR_HAVE_XCB
        if (QGuiApplication::platformName() == "xcb") port = MakeXcbKeyPort();
#endif
#ifdef Q_OS_WIN
        if (QGuiApplication::platformName() == "windows") port = MakeWin32KeyPort();
#endif
#ifdef Q_OS_MACOS
        if (QGuiApplication::platformName() == "cocoa") port = MakeMacKeyPort();
#endif
    }
    return port ? std::move(port) : MakePostKeyPort();
}

std::unique_ptr<ClipboardProbe> MakeClipboardProbe() {
#ifdef BMR_HAVE_XCB
    if (QGuiApplication::platformName() == "xcb") return MakeXcbClipboardProbe();
#endif
    return nullptr;
}

}  // namespace bmr::kit
