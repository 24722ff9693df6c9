#include "secret/SecretLibrary.h"

#include <sodium.h>

namespace kv {

LibraryNotice SecretLibrary() {
  return {"libsodium", sodium_version_string(), "ISC"};
}

}  // namespace kv
