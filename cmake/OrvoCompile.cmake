# Flags that every target of the project shares.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

if(MSVC)
  add_compile_options(/W4 /fp:precise /utf-8)
else()
  # The same scene gives the same bytes at every optimisation level: no fused
  # multiply-add contraction, no fast-math.
  add_compile_options(-Wall -Wextra -Wpedantic -Wno-unused-parameter -ffp-contract=off)
  # Objects do not tell where the sources lay: they are alike wherever they are built.
  add_compile_options("-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=")
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # GCC 12 warns of overlaps and bounds in std::string's operator+ that cannot happen (its bug 105651), and of reads
    # beyond a short text where a vector of texts moves its elements.
    add_compile_options(-Wno-restrict -Wno-stringop-overflow -Wno-stringop-overread -Wno-array-bounds)
  endif()
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # The API's headers are as documented: overriding members do not say so, and entry points of C linkage return MStatus.
    add_compile_options(-Wno-inconsistent-missing-override -Wno-return-type-c-linkage)
  endif()
  if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Sources that are compiled several at a time look like headers to it.
    add_compile_options(-Wno-subobject-linkage)
  endif()
  if(ORVOSKY_WERROR)
    add_compile_options(-Werror)
  endif()
endif()

if(ORVOSKY_SANITIZE)
  add_compile_options(-fsanitize=${ORVOSKY_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=${ORVOSKY_SANITIZE})
endif()

# A compiler cache makes a second build of a fresh clone quick where one is installed.
find_program(ORVOSKY_CCACHE ccache)
mark_as_advanced(ORVOSKY_CCACHE)
if(ORVOSKY_CCACHE)
  # Paths below the source tree count from there, so that what one clone compiled serves another. The sloppiness is
  # what the cache asks for where there are precompiled headers.
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env
    "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" CCACHE_NOHASHDIR=1
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime "${ORVOSKY_CCACHE}")
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fpch-preprocess)
  endif()
endif()

# The parts of the standard library that nearly every source includes, compiled once a target. Sources still include what
# they use: a build with CMAKE_DISABLE_PRECOMPILE_HEADERS=ON has to pass, too.
function(orvo_precompile target)
  target_precompile_headers(${target} PRIVATE
    <algorithm> <array> <charconv> <cmath> <cstdint> <filesystem> <functional> <map> <memory> <optional> <span> <string>
    <string_view> <unordered_map> <unordered_set> <vector> ${ARGN})
endfunction()
