# SPDX-License-Identifier: BSD-3-Clause
# How our own targets are compiled: the language, the warnings, the sanitizers and the compiler cache.
# A project that brings this one in with add_subdirectory keeps its own settings.

set(TESSEL_SANITIZE "" CACHE STRING "Sanitizers for every target, such as address,undefined")
option(TESSEL_LIBFUZZER "Drive the fuzz targets by libFuzzer (clang) instead of replaying files" OFF)
option(TESSEL_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)

if(PROJECT_IS_TOP_LEVEL)
  if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug, Release, RelWithDebInfo or MinSizeRel" FORCE)
  endif()
  set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
  set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
  set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
  set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)

  # Paths below the source folder are hashed as relative ones, so that several work trees share what is compiled.
  find_program(TESSEL_CCACHE ccache)
  if(TESSEL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER
      env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros
      ${TESSEL_CCACHE})
  endif()
endif()

# What every target of ours links against, privately.
add_library(tessel-build INTERFACE)
target_compile_features(tessel-build INTERFACE cxx_std_20)
target_compile_options(tessel-build INTERFACE -Wall -Wextra -Wpedantic)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # It sees overlapping memory in `"text" + std::string` (GCC bug 105651).
  target_compile_options(tessel-build INTERFACE -Wno-restrict)
endif()
if(TESSEL_WARNINGS_AS_ERRORS)
  target_compile_options(tessel-build INTERFACE -Werror)
endif()
if(TESSEL_SANITIZE)
  target_compile_options(tessel-build INTERFACE
    -fsanitize=${TESSEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tessel-build INTERFACE -fsanitize=${TESSEL_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    target_compile_options(tessel-build INTERFACE
      -fsanitize-ignorelist=${CMAKE_CURRENT_LIST_DIR}/sanitizer-ignore.txt)
  endif()
endif()
if(TESSEL_LIBFUZZER)
  target_compile_options(tessel-build INTERFACE -fsanitize=fuzzer-no-link)
endif()
set(CMAKE_CXX_EXTENSIONS OFF)

# What the toolkit and the driver keep until the end, and where they race with themselves, is compiled into the
# programs that run under a sanitizer: `tessel-sanitizer-support`, which is empty in other builds.
add_library(tessel-sanitizer-support INTERFACE)
if(TESSEL_SANITIZE)
  find_file(TESSEL_SOFTWARE_DRIVER swrast_dri.so PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/dri /usr/lib/dri)
  file(READ ${CMAKE_CURRENT_LIST_DIR}/lsan.supp TESSEL_LSAN_SUPPRESSIONS)
  file(READ ${CMAKE_CURRENT_LIST_DIR}/tsan.supp TESSEL_TSAN_SUPPRESSIONS)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
    ${CMAKE_CURRENT_LIST_DIR}/lsan.supp ${CMAKE_CURRENT_LIST_DIR}/tsan.supp)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/SanitizerSupport.cpp.in
    ${CMAKE_CURRENT_BINARY_DIR}/SanitizerSupport.cpp @ONLY)
  target_sources(tessel-sanitizer-support INTERFACE ${CMAKE_CURRENT_BINARY_DIR}/SanitizerSupport.cpp)
  target_link_libraries(tessel-sanitizer-support INTERFACE ${CMAKE_DL_LIBS})
endif()
