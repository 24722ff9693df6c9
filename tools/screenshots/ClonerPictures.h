#pragma once

#include <QMainWindow>
#include <filesystem>
#include <functional>

namespace kv::test {

// Uses the cloner as somebody would who makes a backup, and then takes the wrong one: "cloner-create" is taken when a
// file has been created, "cloner-failed" after a restore that the controller refused.
void TakeClonerPictures(QMainWindow& main, const std::filesystem::path& folder,
                        const std::function<void(QWidget& window, const char* name)>& take);

}  // namespace kv::test
