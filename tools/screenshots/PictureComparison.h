#pragma once

#include <QString>

namespace kv::test {

// Holds the pictures of one folder against those of the same name in another, which were taken before: tells which are
// new, gone or others, and draws the others into `marks`, with what has changed in red. A picture that went wrong is
// seen here before it is in the documentation. How many differ.
int ComparePictures(const QString& before, const QString& now, const QString& marks);

}  // namespace kv::test
