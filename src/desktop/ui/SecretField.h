#pragma once

#include "secret/Secret.h"

class QLineEdit;

namespace kv {

// Makes a field for a password of `field`: nothing that is typed is shown, copied or offered again.
void MakeSecret(QLineEdit& field);

// What was typed, UTF-8. The field is emptied and its text overwritten; of what the toolkit has copied for itself while
// somebody typed nobody knows.
[[nodiscard]] Secret TakeSecret(QLineEdit& field);

}  // namespace kv
