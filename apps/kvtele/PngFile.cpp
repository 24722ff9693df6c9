#include "apps/kvtele/PngFile.h"

#include <png.h>

#include <vector>

#include "base/PathText.h"

namespace kv::cli {

namespace {

// Red, green and blue of each dot, a byte each.
std::vector<png_byte> ColoursOf(const panel::Picture& picture) {
  std::vector<png_byte> bytes;
  bytes.reserve(picture.Dots().size() * 3);
  for (const panel::Dot dot : picture.Dots()) {
    for (const unsigned shift : {16U, 8U, 0U}) bytes.push_back(static_cast<png_byte>(dot >> shift & 0xFFU));
  }
  return bytes;
}

}  // namespace

std::expected<void, FileError> SavePng(const std::filesystem::path& file, const panel::Picture& picture) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(picture.Width());
  image.height = static_cast<png_uint_32>(picture.Height());
  image.format = PNG_FORMAT_RGB;
  const std::vector<png_byte> colours = ColoursOf(picture);
  std::string content(PNG_IMAGE_PNG_SIZE_MAX(image), '\0');
  png_alloc_size_t length = content.size();
  const int isDone = png_image_write_to_memory(&image, content.data(), &length, 0, colours.data(), 0, nullptr);
  if (isDone == 0) return std::unexpected(FileError{.file = Utf8FromPath(file), .what = image.message});
  content.resize(length);
  return SaveAtomically(file, content);
}

LibraryNotice PngLibrary() {
  return {"libpng", png_get_libpng_ver(nullptr), "libpng-2.0"};
}

}  // namespace kv::cli
