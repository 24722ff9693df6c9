# libsodium as Sodium::Sodium; it has no package for CMake.
find_path(SODIUM_HEADERS sodium.h)
find_library(SODIUM_LIBRARY sodium)
if(NOT SODIUM_LIBRARY OR NOT SODIUM_HEADERS)
  message(FATAL_ERROR "libsodium is not there. Install libsodium-dev.")
endif()
set(Sodium_FOUND TRUE)
if(NOT TARGET Sodium::Sodium)
  add_library(Sodium::Sodium UNKNOWN IMPORTED)
  set_target_properties(Sodium::Sodium PROPERTIES IMPORTED_LOCATION ${SODIUM_LIBRARY}
                                                  INTERFACE_INCLUDE_DIRECTORIES ${SODIUM_HEADERS})
endif()
