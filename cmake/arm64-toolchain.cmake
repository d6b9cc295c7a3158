# Builds for the arm64 device. Its libraries stand where cmake/fetch-arm64.sh unpacked them.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)

if(NOT "$ENV{XDG_CACHE_HOME}" STREQUAL "")
  set(ESH_ARM64_ROOT "$ENV{XDG_CACHE_HOME}/esh/arm64-root")
else()
  set(ESH_ARM64_ROOT "$ENV{HOME}/.cache/esh/arm64-root")
endif()

set(CMAKE_FIND_ROOT_PATH ${ESH_ARM64_ROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${ESH_ARM64_ROOT}/usr/lib/aarch64-linux-gnu/pkgconfig:${ESH_ARM64_ROOT}/usr/share/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${ESH_ARM64_ROOT})

# Where Debian's compilers look by themselves when it is their own machine.
set(CMAKE_CXX_FLAGS_INIT "-isystem ${ESH_ARM64_ROOT}/usr/include/aarch64-linux-gnu")
set(CMAKE_EXE_LINKER_FLAGS_INIT
    "-Wl,-rpath-link,${ESH_ARM64_ROOT}/lib/aarch64-linux-gnu:${ESH_ARM64_ROOT}/usr/lib/aarch64-linux-gnu")
