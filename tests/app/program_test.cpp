// The program as a whole, started as a person starts it.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>

namespace {

class Program : public testing::Test {
  protected:
    Program() {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name :
             {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "XDG_CONFIG_HOME", "XDG_DOCUMENTS_DIR"})
            environment.remove(name);
        environment.insert("HOME", home_.path());
        environment.insert("XDG_RUNTIME_DIR", runtime_.path());
        process_.setProcessEnvironment(environment);
    }
    void UseScreen() {
        QProcessEnvironment environment = process_.processEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        process_.setProcessEnvironment(environment);
    }
    /// The exit status, -1 when it did not end by itself.
    int Run(const QStringList& arguments) {
        process_.start(BMR_PROGRAM, arguments);
        if (!process_.waitForFinished(10000) || process_.exitStatus() != QProcess::NormalExit) return -1;
        return process_.exitCode();
    }
    QString LockFile() const { return runtime_.filePath("brindlemere.lock"); }

    QTemporaryDir home_;
    QTemporaryDir runtime_;
    QProcess process_;
};

TEST_F(Program, WithoutAScreenItSaysWhatToUseInstead) {
    EXPECT_EQ(Run({}), 1);
    const QByteArray words = process_.readAllStandardError();
    EXPECT_TRUE(words.contains("no display")) << words.toStdString();
    EXPECT_TRUE(words.contains("bmr new")) << words.toStdString();
    EXPECT_EQ(Run({"--version"}), 0);
    EXPECT_TRUE(process_.readAllStandardOutput().startsWith("Brindlemere "));
    EXPECT_EQ(Run({"--help"}), 0);
    EXPECT_TRUE(process_.readAllStandardOutput().contains("--theme"));
    UseScreen();
    EXPECT_EQ(Run({"--colour"}), 2);
    EXPECT_TRUE(process_.readAllStandardError().contains("--colour"));
}

TEST_F(Program, EndsInOrderWhileAQuestionStands) {
    UseScreen();
    // The question of a first run is the earliest that a signal can meet.
    process_.start(BMR_PROGRAM, QStringList());
    ASSERT_TRUE(process_.waitForStarted());
    ASSERT_TRUE(QTest::qWaitFor([this] { return QFile::exists(LockFile()); }, 10000));
    QFile limits(QString("/proc/%1/limits").arg(process_.processId()));
    ASSERT_TRUE(limits.open(QIODevice::ReadOnly));
    EXPECT_TRUE(QString(limits.readAll()).contains(QRegularExpression("Max core file size +0 +0 ")));
    QTest::qWait(300);
    ::kill(static_cast<pid_t>(process_.processId()), SIGTERM);
    ASSERT_TRUE(process_.waitForFinished(10000));
    EXPECT_EQ(process_.exitStatus(), QProcess::NormalExit) << "cut off instead of closed";
    EXPECT_EQ(process_.exitCode(), 0);
    EXPECT_FALSE(QFile::exists(LockFile()));
    EXPECT_FALSE(QDir(home_.path()).exists("Documents/Brindlemere")) << "nobody agreed to the default file";
}

}  // namespace
