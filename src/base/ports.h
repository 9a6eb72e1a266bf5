#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>

#include "base/wiped.h"

namespace bmr {

class Secret;

enum class Buttons { Ok, OkCancel, YesNo, RetryCancel, YesNoCancel };
enum class Answer { Ok, Cancel, Yes, No, Retry };
enum class BoxIcon { None, Information, Question, Warning, Critical };

/// A message box. `number` is its message number (0 when the text has none), `text` what it shows, in UTF-8.
struct Box {
    int number = 0;
    WipedText text;
    Buttons buttons = Buttons::Ok;
    BoxIcon icon = BoxIcon::Information;
    /// The button that Return presses.
    Answer standard = Answer::Ok;
    /// Empty: the program's title.
    std::string title = {};
    /// What the buttons say, in the order in which `Buttons` names them; empty: the usual words.
    std::array<std::string, 3> words = {};
};

/// Msg(number) in a box with one button.
Box MessageBox(int number, BoxIcon icon = BoxIcon::Information);

/// The box that confirms a delete: OK and Cancel, the second button as default, the warning icon.
Box ConfirmDelete(int number, WipedText text);

/// What the passphrase prompt is to do. All texts in UTF-8.
struct PassphraseRequest {
    std::string title;
    std::string prompt;
    /// `chkConfirm`, `chkCheckPWquality`, `chkPwLength`.
    bool confirm = false;
    bool checkQuality = false;
    bool noiseOnlyWhileShort = false;
    std::string clearCaption = "Show Passphrase in clear";
};

struct FileRequest {
    std::string title;
    /// Pairs in the form "Brindlemere BMR (*.bmr)|*.bmr|All Files (*.*)|*.*".
    std::string filter;
    bool mustExist = false;
    bool addsTo = false;  ///< what a file holds already stays: nobody is asked whether to replace it
};

/// Everything that is asked of the person, or told to them.
class Prompter {
  public:
    virtual ~Prompter() = default;

    /// Shows a box and gives the button. A closed box gives Cancel, or No where there is no Cancel.
    virtual Answer Ask(const Box& box) = 0;

    /// One line of text (UTF-8); nothing when cancelled.
    virtual std::optional<std::string> InputBox(const std::string& title, const std::string& prompt,
                                                const std::string& initial) = 0;

    /// Shows the passphrase prompt. True with `typed` filled (bytes of code page 1252), false when cancelled.
    virtual bool AskSecret(const PassphraseRequest& request, Secret& typed) = 0;

    /// Nothing when cancelled.
    virtual std::optional<std::filesystem::path> AskOpenFile(const FileRequest& request) = 0;
    virtual std::optional<std::filesystem::path> AskSaveFile(const FileRequest& request) = 0;

    /// The words in the status panel `comment`; `busy` shows the hourglass.
    virtual void Comment(const std::string& text, bool busy) = 0;

    /// The forced pause after a failed passphrase (`timerPW`, 2000 ms); the window stays alive meanwhile.
    virtual void PauseAfterFailure() = 0;
};

/// The values that live outside the file, by the names "MostRecentFiles/1" and "User/LastUser", and the
/// guards' switches for this machine, "Guards/...".
class Registry {
  public:
    virtual ~Registry() = default;
    /// Empty when absent.
    virtual std::string Read(const std::string& name) const = 0;
    virtual void Write(const std::string& name, const std::string& value) = 0;
};

/// What the desktop does for us. Each gives false when it could not be started.
class Desktop {
  public:
    virtual ~Desktop() = default;
    virtual bool OpenWeb(const std::string& url) = 0;
    virtual bool OpenMail(const std::string& address) = 0;
    virtual bool Dial(const std::string& number, const std::string& name) = 0;
};

/// Facts of the user's locale that rules need.
struct LocaleFacts {
    /// 1 = Sunday to 7 = Saturday.
    int firstDayOfWeek = 1;
    char decimalPoint = '.';
    /// Short date, as a pattern of the letters y M d ("dd.MM.yyyy").
    std::string shortDate = "yyyy-MM-dd";
};

}  // namespace bmr
