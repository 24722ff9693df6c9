# cmake -P without-rpath.cmake FILE: takes out of a program where it looks for libraries before the system does.
file(RPATH_REMOVE FILE "${CMAKE_ARGV3}")
