# Toolchain file: the handset's processor (ARMv5TE, soft float), by Debian's cross compiler and build/sysroot, which
# scripts/setup-sysroot makes. Programs of the build that the build itself runs, and tests, go to the emulator.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv5te)
set(xscale_sysroot ${CMAKE_CURRENT_LIST_DIR}/../build/sysroot)
cmake_path(NORMAL_PATH xscale_sysroot)
set(CMAKE_SYSROOT ${xscale_sysroot})
set(CMAKE_C_COMPILER arm-linux-gnueabi-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabi-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabi)
set(CMAKE_C_FLAGS_INIT "-march=armv5te -mtune=xscale -mfloat-abi=soft -Wno-psabi")
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT}")

set(CMAKE_FIND_ROOT_PATH ${xscale_sysroot})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${xscale_sysroot})
set(ENV{PKG_CONFIG_LIBDIR} ${xscale_sysroot}/usr/lib/arm-linux-gnueabi/pkgconfig:${xscale_sysroot}/usr/share/pkgconfig)

# The toolkit's generators run here: those of the machine's own toolkit, which is of the same version.
foreach(property PREFIX LIBS)
  execute_process(COMMAND qmake6 -query QT_INSTALL_${property} OUTPUT_VARIABLE host_${property}
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
endforeach()
set(QT_HOST_PATH ${host_PREFIX})
set(QT_HOST_PATH_CMAKE_DIR ${host_LIBS}/cmake)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/run-xscale)
cmake_path(NORMAL_PATH CMAKE_CROSSCOMPILING_EMULATOR)
