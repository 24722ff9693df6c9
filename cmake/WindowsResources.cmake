# What a program for Windows tells of itself: version, description, what it can do on its screen and with long paths, and an icon where there is one.
# The code page stays that of the system: settings are kept in it, by the platform's own calls.
set(KV_PROGRAM_ICON "" CACHE FILEPATH "Icon of the programs for Windows (.ico); empty: none")

# kv_windows_resources(<target> <description>)
function(kv_windows_resources target description)
  set(manifest ${CMAKE_CURRENT_BINARY_DIR}/${target}.manifest)
  set(icon "")
  if(KV_PROGRAM_ICON)
    set(icon "1 ICON \"${KV_PROGRAM_ICON}\"")
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/packaging/windows/program.manifest.in ${manifest} @ONLY)
  configure_file(${PROJECT_SOURCE_DIR}/packaging/windows/program.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${target}.rc PROPERTIES OBJECT_DEPENDS "${manifest};${KV_PROGRAM_ICON}")
endfunction()
