#pragma once

#include <QMainWindow>
#include <filesystem>
#include <functional>

namespace kv::test {

// Uses the downloader as somebody would who sends a project and then another O/S: "downloader" is taken while the
// project's last question is open, "downloader-done" after it, "downloader-os" while the O/S is chosen,
// "downloader-warning" of what it may erase, "downloader-aborted" behind that. `folder`, the program's, holds the
// sample files.
void TakeDownloaderPictures(QMainWindow& main, const std::filesystem::path& folder,
                            const std::function<void(QWidget& window, const char* name)>& take);

}  // namespace kv::test
