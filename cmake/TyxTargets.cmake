# What every target of this project is built with, and the functions that declare one.

add_library(tyx_options INTERFACE)
target_compile_features(tyx_options INTERFACE cxx_std_20)
# QT_NO_CAST_*: text changes its encoding only where the code says so.
target_compile_definitions(tyx_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING QT_NO_KEYWORDS
  QT_USE_QSTRINGBUILDER _FILE_OFFSET_BITS=64)
# The handset's processor rotates an unaligned word instead of loading it: such a cast is an error everywhere.
target_compile_options(tyx_options INTERFACE
  -Wall -Wextra -Wshadow -Wconversion -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual
  -Werror=cast-align $<$<CXX_COMPILER_ID:GNU>:-Wcast-align=strict> # in this order: by itself the former is the plain one
  $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion> # as GCC's -Wconversion, which the builds use
  $<$<BOOL:${TYX_WERROR}>:-Werror>
  -ffunction-sections -fdata-sections)
target_link_options(tyx_options INTERFACE -Wl,--gc-sections -Wl,--as-needed -Wl,--no-undefined)
if(TYX_SANITIZE)
  add_compile_options(-fsanitize=${TYX_SANITIZE} -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${TYX_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    # clang leaves the runtime out of shared libraries: their undefined symbols come from the program.
    set_property(TARGET tyx_options PROPERTY INTERFACE_LINK_OPTIONS -Wl,--gc-sections -Wl,--as-needed)
  else()
    add_compile_options(-fno-sanitize-recover=undefined)
  endif()
endif()
if(TYX_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
  add_compile_definitions(TYX_COVERAGE)
endif()

set(TYX_FOLDERS "" CACHE INTERNAL "Folder libraries that make up the shared library")

# tyx_folder(<name> SOURCES <file>... [LINK <target>...])
# One folder of the shared library. LINK names what it may include: arrows point downwards only.
function(tyx_folder name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR} ${CMAKE_BINARY_DIR}/include/tyxappbase)
  target_link_libraries(${name} PUBLIC ${arg_LINK} PRIVATE tyx_options)
  set(TYX_FOLDERS ${TYX_FOLDERS} ${name} CACHE INTERNAL "")
endfunction()

# tyx_public_headers(<Name>=<header> ...)
# Installs headers of the current folder under their folder's path and makes <Name> a forwarding header at the top of
# the include folder, so that #include <Name> works; further names for one header are further entries.
function(tyx_public_headers)
  file(RELATIVE_PATH folder ${CMAKE_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
  foreach(entry IN LISTS ARGN)
    string(REGEX MATCH "^([^=]+)=(.+)$" matched ${entry})
    set(name ${CMAKE_MATCH_1})
    set(header ${CMAKE_MATCH_2})
    file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/include/tyxappbase/${name}
      CONTENT "#include \"@folder@/@header@\" // IWYU pragma: export\n" @ONLY)
    install(FILES ${CMAKE_BINARY_DIR}/include/tyxappbase/${name} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tyxappbase)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tyxappbase/${folder})
  endforeach()
endfunction()

# tyx_program(<name> SOURCES <file>... [LINK <target>...])
# A program over the shared library, which it finds from where it is when both are installed.
function(tyx_program name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE tyxappbase ${arg_LINK} tyx_options)
  set_target_properties(${name} PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
endfunction()

# tyx_input_method(<name> SOURCES <file>... [LINK <target>...])
# An input method, where IM_ResDir looks for them below $QTDIR, in the build tree and installed. The process that loads
# it has the shared library already, so that it need not find it.
function(tyx_input_method name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINK")
  add_library(${name} MODULE ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE tyxappbase ${arg_LINK} tyx_options)
  set_target_properties(${name} PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib/inputmethods)
  install(TARGETS ${name} DESTINATION lib/inputmethods)
endfunction()

include(TyxStrings)

# In a cross build the emulator goes around the sandbox: then it also runs the programs that a test starts.
set(TYX_SANDBOX ${CMAKE_CROSSCOMPILING_EMULATOR} ${CMAKE_SOURCE_DIR}/scripts/sandbox --rw ${CMAKE_BINARY_DIR} --)

set(TYX_PATIENCE 1 CACHE STRING "By how much longer tests may take, where the processor is emulated for example")

# tyx_add_test(<name> SOURCES <file>... [LINK <target>...] [TIMEOUT <seconds>] [TMP_SIZE <bytes>] [ENV <NAME=value>...])
# A QtTest program that ctest runs in a sandbox of its own (and, in a cross build, on the emulator).
# TMP_SIZE makes its /tmp a disk that gets full.
# LINK either folder libraries (to reach what the shared library hides) or tyxappbase, not both.
function(tyx_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT;TMP_SIZE" "SOURCES;LINK;ENV")
  set(sandbox ${TYX_SANDBOX})
  if(arg_TMP_SIZE)
    list(TRANSFORM sandbox REPLACE "^--$" "--tmp-size;${arg_TMP_SIZE};--")
  endif()
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 120)
  endif()
  math(EXPR arg_TIMEOUT "${arg_TIMEOUT} * ${TYX_PATIENCE}")
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${arg_LINK} Qt6::Test tyx_options)
  target_compile_definitions(${name} PRIVATE
    TYX_SOURCE_DIR="${CMAKE_SOURCE_DIR}" TYX_BINARY_DIR="${CMAKE_BINARY_DIR}" TYX_PATIENCE=${TYX_PATIENCE})
  if(CMAKE_CROSSCOMPILING)
    target_compile_definitions(${name} PRIVATE TYX_EMULATED) # for what cannot be seen there
  endif()
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  add_test(NAME ${name} COMMAND ${sandbox} $<TARGET_FILE:${name}>)
  set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT}
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LSAN_OPTIONS=print_suppressions=0:suppressions=${CMAKE_SOURCE_DIR}/tests/lsan.supp;${arg_ENV}")
endfunction()
