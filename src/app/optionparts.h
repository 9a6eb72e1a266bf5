#pragma once

#include <QBoxLayout>

class QButtonGroup;
class QLabel;

namespace bmr::app {

// Parts of the pages of the preferences.

/// A group below the ones before it: its caption, and an indented column that is to be filled.
QVBoxLayout* AddGroup(QVBoxLayout& page, const QString& caption);

QHBoxLayout* AddRow(QVBoxLayout& group);

/// A pale line that explains.
QLabel* MakeHint(const QString& words);

}  // namespace bmr::app
