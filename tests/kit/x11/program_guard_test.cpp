// The program itself, on a screen, with somebody who listens.
#include <QProcess>
#include <algorithm>

#include "kit/x11/xclient.h"
#include "support/forms.h"
#include "support/guards.h"
#include "support/sitting.h"

namespace bmr {
namespace {

using namespace test;

TEST(ProgramOnScreen, ADatabaseIsOpenedAndLeftWithoutATrace) {
    Sitting sitting;
    sitting.Make();
    sitting.Close();

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", QString::fromStdString(sitting.folder.Path()));
    QProcess program;
    program.setProcessEnvironment(environment);
    program.setProcessChannelMode(QProcess::ForwardedChannels);
    program.start(BMR_PROGRAM, {QString::fromStdString(sitting.file)});

    Typist typist;
    const auto inFront = [&typist](const std::string& title) {
        return LiveUntil(
            [&] {
                const xcb_window_t window = typist.Find(title);
                return window && window == typist.Active();
            },
            10000);
    };
    ASSERT_TRUE(inFront("Database: TEST.BMR — Brindlemere"));
    Live(300);
    {
        Recorder recorder;
        WindowSnooper snooper(typist.Find("Database: TEST.BMR — Brindlemere"));
        typist.Type(kPassphrase, 60);
        typist.Press(kKeyReturn, true);
        typist.Press(kKeyReturn, false);
        ASSERT_TRUE(inFront("test — Brindlemere"));
        std::vector<std::uint8_t> typed;
        for (const char c : std::string(kPassphrase))
            typed.push_back(typist.CodeOf(static_cast<xcb_keysym_t>(c >= 'A' && c <= 'Z' ? c + 32 : c)));
        const auto heard = recorder.Heard();
        EXPECT_GT(heard.size(), 3 * typed.size());
        EXPECT_EQ(std::search(heard.begin(), heard.end(), typed.begin(), typed.begin() + 4), heard.end());
        EXPECT_TRUE(snooper.Heard().empty());
    }
    typist.Press(kKeyControl, true);
    typist.Press('q', true);
    typist.Press('q', false);
    typist.Press(kKeyControl, false);
    typist.Sync();
    EXPECT_TRUE(program.waitForFinished(5000));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0);
    EXPECT_FALSE(ClipboardClient().HasOwner("CLIPBOARD"));
    EXPECT_EQ(sitting.Open(), 0);
    sitting.Close();
}

}  // namespace
}  // namespace bmr
