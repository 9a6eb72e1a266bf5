// The composition root: nothing else knows all rooms.
#include <QClipboard>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

#include "app/frmMDI.h"
#include "app/hardening.h"
#include "app/registry.h"
#include "app/start.h"
#include "app/watch.h"
#include "app/windowmemory.h"
#include "crypto/systemrandom.h"
#include "forms.h"
#include "kit/clipboardguard.h"
#include "kit/frmPW.h"
#include "kit/guardedapplication.h"
#include "kit/guards.h"
#include "kit/platform.h"
#include "kit/programtheme.h"
#include "kit/prompter.h"
#include "kit/qtdesktop.h"
#include "kit/sessionevents.h"
#include "store/session.h"
#include "tasks/edittask.h"

namespace {

using namespace bmr;

void Print(std::FILE* stream, const QString& text) {
    std::fputs(text.toLocal8Bit().constData(), stream);
}

/// The toolkit aborts when it finds no screen behind the name that it was given. Say what that means instead.
void TellFatal(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type != QtFatalMsg) return Print(stderr, text + '\n');
    Print(stderr, app::NoScreenText());
    std::_Exit(1);
}

int Run(kit::GuardedApplication& application, const app::Arguments& arguments) {
    kit::Theme theme(application);
    kit::QtPrompter prompter;
    const app::Folders folders = app::SystemFolders();
    app::SingleInstance instance(folders.runtime);
    if (!instance.Take()) {
        prompter.Ask(MessageBox(135));
        return 1;
    }

    SystemClock clock;
    cry::SystemRandom random;
    app::QtRegistry registry;
    const QString looks = arguments.theme.isEmpty() ? app::RememberedTheme(registry) : arguments.theme;
    theme.Choose(kit::Theme::FromName(looks));
    kit::QtDesktop desktop;
    store::Session session({prompter, clock, random, registry, &desktop});
    const auto keyboard = kit::MakeKeyPort();
    kit::ClipboardGuard clipboard(*QApplication::clipboard(), random, clock);
    kit::SessionEvents events;
    kit::Guards guards(*keyboard, random, clipboard);
    app::frmMDI frame({session,
                       Forms({.copySecret = [&clipboard](const QString& secret) { clipboard.Copy(secret); },
                              .editTask = &tasks::EditTask}),
                       {folders.documents},
                       &theme,
                       QString::fromStdString(guards.Describe()),
                       [&events] { return events.Offer(); }});
    app::Watch watch(application, session, frame, clipboard, events, clock);

    prompter.SetWindow(&frame);
    prompter.SetEnding([&session] { return session.ending; });
    prompter.SetOnPrompt([&guards](QWidget& prompt) {
        if (auto* form = qobject_cast<kit::frmPW*>(&prompt)) guards.GuardPrompt(*form);
    });
    QObject::connect(&prompter, &kit::QtPrompter::CommentChanged, &frame, &app::frmMDI::ShowComment);

    QObject::connect(&frame, &app::frmMDI::DatabaseOpened, &frame,
                     [&] { prompter.SetFolder(session.DatabasePath.parent_path()); });

    frame.show();
    // From the event loop, so that an end during the first question unwinds like any other.
    QTimer::singleShot(0, &frame, [&] { frame.Start(arguments.file); });
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    app::HardenProcess();
    QStringList words;
    for (int at = 1; at < argc; ++at)
        words << QString::fromLocal8Bit(argv[at]);
    if (const app::Arguments asked = app::ParseArguments(words); asked.help || asked.version) {
        Print(stdout, asked.help ? app::HelpText() : app::VersionText());
        return 0;
    }
    if (!app::HasScreen(words)) {
        Print(stderr, app::NoScreenText());
        return 1;
    }

    qInstallMessageHandler(TellFatal);
    kit::GuardedApplication application(argc, argv);
    qInstallMessageHandler(nullptr);
    QApplication::setApplicationName("brindlemere");
    QApplication::setApplicationDisplayName("Brindlemere");
    QApplication::setApplicationVersion(BMR_VERSION);
    QGuiApplication::setDesktopFileName("io.tolvane.Brindlemere");

    const app::Arguments arguments = app::ParseArguments(QApplication::arguments().mid(1));
    if (!arguments.error.isEmpty()) {
        Print(stderr, "brindlemere: " + arguments.error + "\nTry brindlemere --help.\n");
        return 2;
    }
    return Run(application, arguments);
}
