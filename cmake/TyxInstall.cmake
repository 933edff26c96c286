# How the library is installed, and how programs outside of this tree find it. Programs, modules and data are installed
# where they are declared. The installed tree may be moved as a whole, but for the file `environment`.
include(CMakePackageConfigHelpers)

install(TARGETS tyxappbase EXPORT TyxAppBaseTargets)

# find_package(TyxAppBase)
set(folder ${CMAKE_INSTALL_LIBDIR}/cmake/TyxAppBase)
install(EXPORT TyxAppBaseTargets NAMESPACE TyxAppBase:: DESTINATION ${folder})
configure_package_config_file(cmake/TyxAppBaseConfig.cmake.in ${CMAKE_BINARY_DIR}/TyxAppBaseConfig.cmake
  INSTALL_DESTINATION ${folder})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/TyxAppBaseConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/TyxAppBaseConfig.cmake ${CMAKE_BINARY_DIR}/TyxAppBaseConfigVersion.cmake
  cmake/TyxStrings.cmake DESTINATION ${folder})

# pkg-config tyxappbase
file(RELATIVE_PATH to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/tyxappbase.pc.in ${CMAKE_BINARY_DIR}/tyxappbase.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/tyxappbase.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# What the programs of a phone find in their environment. Written when it is installed: only then the prefix is known.
set(environment ${CMAKE_INSTALL_DATADIR}/tyxappbase/environment)
install(CODE "
  set(share \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/tyxappbase\")
  message(STATUS \"Installing: \$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${environment}\")
  configure_file(\"${CMAKE_SOURCE_DIR}/cmake/environment.in\"
    \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${environment}\" @ONLY)")
