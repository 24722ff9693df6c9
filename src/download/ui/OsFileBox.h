#pragma once

#include <QComboBox>
#include <QLabel>

#include "download/OsFileLists.h"

namespace kv {

// What the windows for O/S files have in common.

// In which data of an entry its detail is (ListedFile).
inline constexpr int kDetailRole = Qt::UserRole;

// Whom the file is chosen for.
[[nodiscard]] QLabel* MakeOsHeading(const QString& controller, QWidget* parent);
// What is missing, or worth knowing of what is chosen.
[[nodiscard]] QLabel* MakeOsHint(QWidget* parent);

// A drop-down list of O/S or fonts files. What is preselected is so; otherwise nothing is, and the user has to choose.
[[nodiscard]] QComboBox* MakeOsFileBox(const char* name, const char* accessibleName, const FileList& list,
                                       QWidget* parent);

// Why nothing is chosen in it: for the tooltip of the button that takes it, and for the line below. Empty when a file
// is.
[[nodiscard]] QString WhyNoFile(const QComboBox& box, const FileList& list, const char* what);

}  // namespace kv
