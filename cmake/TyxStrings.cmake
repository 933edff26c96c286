# Translations of programs; installed for applications outside of this tree, which say it the same way.

include(GNUInstallDirs)
find_program(TYX_LRELEASE lrelease HINTS ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_BINS} /usr/lib/qt6/bin REQUIRED)

# tyx_strings(<name> <folder>/<name>_<language>.ts ...)
# Compiles translations into strings/<language>/ of the build tree, the layout that TYX_RES_STRING_PATH wants, and
# installs them where the phone has them.
function(tyx_strings name)
  foreach(source IN LISTS ARGN)
    cmake_path(GET source STEM LAST_ONLY file)
    string(REPLACE "${name}_" "" language ${file})
    set(folder ${CMAKE_BINARY_DIR}/strings/${language})
    add_custom_command(OUTPUT ${folder}/${file}.qm
      COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
      COMMAND ${TYX_LRELEASE} -silent ${CMAKE_CURRENT_SOURCE_DIR}/${source} -qm ${folder}/${file}.qm
      DEPENDS ${source} VERBATIM)
    install(FILES ${folder}/${file}.qm DESTINATION ${CMAKE_INSTALL_DATADIR}/tyxappbase/strings/${language})
    list(APPEND compiled ${folder}/${file}.qm)
  endforeach()
  add_custom_target(${name}_strings ALL DEPENDS ${compiled})
endfunction()
