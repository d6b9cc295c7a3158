set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

# Flags of every target. `esh_flags` holds what all code shares; `esh_product_flags` adds what the shell itself is
# built with: no exceptions, no RTTI, and the hardening of a program that runs as root.
add_library(esh_flags INTERFACE)
target_compile_features(esh_flags INTERFACE cxx_std_20)
target_include_directories(esh_flags INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(esh_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
                                           # two builds in two places are the same bytes
                                           -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
if(ESH_SANITIZE)
  # Not what an object's class is: the product is built without RTTI.
  target_compile_options(esh_flags INTERFACE -fsanitize=address,undefined -fno-sanitize=vptr
                                             -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)
  target_link_options(esh_flags INTERFACE -fsanitize=address,undefined)
endif()

add_library(esh_product_flags INTERFACE)
target_link_libraries(esh_product_flags INTERFACE esh_flags)
target_compile_options(esh_product_flags INTERFACE -fno-exceptions -fno-rtti -fstack-protector-strong
                                                   -fstack-clash-protection -ffunction-sections -fdata-sections)
if(ESH_SANITIZE)
  target_compile_options(esh_product_flags INTERFACE -O1)
else()
  target_compile_definitions(esh_product_flags INTERFACE $<$<CONFIG:Release>:_FORTIFY_SOURCE=2>)
endif()
# The boot image holds libc only, so the C++ run-time goes into the binary.
target_link_options(esh_product_flags INTERFACE -static-libstdc++ -static-libgcc -Wl,-z,relro,-z,now -Wl,--gc-sections
                                                -Wl,--as-needed)
# A tenth off the binary: libcrypto is full of addresses. A linker that cannot do it only warns.
include(CheckLinkerFlag)
check_linker_flag(CXX LINKER:--fatal-warnings,-z,pack-relative-relocs ESH_PACKS_RELOCATIONS)
if(ESH_PACKS_RELOCATIONS)
  target_link_options(esh_product_flags INTERFACE LINKER:-z,pack-relative-relocs)
endif()

# What test code is built with. It is never optimised, unlike what it checks: the time to compile it is what one waits
# for.
add_library(esh_test_flags INTERFACE)
target_link_libraries(esh_test_flags INTERFACE esh_flags)
# GoogleTest's macros end in an else of their own, which needs no braces around it.
target_compile_options(esh_test_flags INTERFACE -O0 -fPIE -Wno-dangling-else)

# One layer of the shell: what stands in a folder, or the sources named. It uses only layers below it, which its unit test
# proves by linking nothing else.
function(esh_layer name)
  cmake_parse_arguments(LAYER "" "FOLDER" "SOURCES;USES" ${ARGN})
  if(LAYER_FOLDER)
    file(GLOB LAYER_SOURCES CONFIGURE_DEPENDS ${LAYER_FOLDER}/*.cpp)
    list(FILTER LAYER_SOURCES EXCLUDE REGEX "/main\\.cpp$") # of the program that is linked with it
  endif()
  add_library(${name} STATIC ${LAYER_SOURCES})
  target_link_libraries(${name} PRIVATE esh_product_flags PUBLIC ${LAYER_USES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
endfunction()
