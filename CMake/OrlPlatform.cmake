# Sets the platform folder, the compiler options, and the packages of each platform.

# The variables are set only in this folder and below, so that a parent project keeps its own values.
if(NOT CMAKE_CXX_STANDARD)
  set(CMAKE_CXX_STANDARD 17)
endif()
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "" FORCE)
endif()

find_package(Threads REQUIRED)

if(WIN32)
  set(ORL_PLATFORM Win)
  include(OrlWindowsPackages)
else()
  set(ORL_PLATFORM Linux)
  find_package(Boost 1.74 REQUIRED COMPONENTS thread)
  if(ORL_BUILD_TESTS) # the tests compare results with ICU
    find_package(ICU REQUIRED COMPONENTS uc i18n)
    set(ORL_ICU ICU::uc ICU::i18n)
  endif()
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(LIBURING REQUIRED IMPORTED_TARGET liburing)
  find_package(SQLite3 REQUIRED)
  pkg_check_modules(SPNG REQUIRED IMPORTED_TARGET spng)
  pkg_check_modules(LIBDEFLATE REQUIRED IMPORTED_TARGET libdeflate)
  set(ORL_BOOST_THREAD Boost::thread Threads::Threads)
  set(ORL_URING PkgConfig::LIBURING)
  set(ORL_SQLITE SQLite::SQLite3)
  set(ORL_PNG PkgConfig::SPNG PkgConfig::LIBDEFLATE)
  set(ORL_SYSTEM_LIBRARIES "")
endif()

# The JSON library is header-only and the same for both platforms. A link in a separate folder keeps the compiler from
# finding the rest of the machine's include folder.
set(json_include "${PROJECT_BINARY_DIR}/json-include")
file(MAKE_DIRECTORY "${json_include}")
if(NOT EXISTS "${json_include}/nlohmann")
  file(CREATE_LINK /usr/include/nlohmann "${json_include}/nlohmann" SYMBOLIC)
endif()
add_library(orl_json INTERFACE)
target_include_directories(orl_json SYSTEM INTERFACE $<BUILD_INTERFACE:${json_include}>)

# xxHash is used as one header, on both platforms.
set(xxhash_include "${PROJECT_BINARY_DIR}/xxhash-include")
file(MAKE_DIRECTORY "${xxhash_include}")
if(NOT EXISTS "${xxhash_include}/xxhash.h")
  file(CREATE_LINK /usr/include/xxhash.h "${xxhash_include}/xxhash.h" SYMBOLIC)
endif()

# Ninja names sources inside the build folder, such as those that FetchContent fetched, relative to that folder.
file(RELATIVE_PATH source_from_build "${CMAKE_BINARY_DIR}" "${PROJECT_SOURCE_DIR}")
string(REGEX REPLACE "([^/])$" "\\1/" source_from_build "${source_from_build}")
# Compile options for all our targets. Floating-point results must be exact to the last bit, so contraction is off.
add_library(orl_strict INTERFACE)
target_compile_options(orl_strict INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -ffp-contract=off
  # Reports contain source paths relative to this project, the same on every machine and in every parent project.
  -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/= -fmacro-prefix-map=${source_from_build}=
  # Symbols that g++ marks as unique would keep our libraries loaded after a host unloads them.
  $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>
  # The compiler spills wide registers with aligned moves, but the system's stack is aligned only to 16 bytes.
  $<$<BOOL:${WIN32}>:-Wa,-muse-unaligned-vector-move>
  $<$<BOOL:${ORL_WARNINGS_AS_ERRORS}>:-Werror>)
target_compile_definitions(orl_strict INTERFACE
  BOOST_BIND_GLOBAL_PLACEHOLDERS BOOST_ALL_NO_LIB
  $<$<BOOL:${WIN32}>:UNICODE;_UNICODE;NOMINMAX;WIN32_LEAN_AND_MEAN;_WIN32_WINNT=0x0A00>)

# Sections that begin on page boundaries of the file can be mapped. Wine reads others, with their debug information, each
# time a program starts: that took two thirds of the start of orl.
if(WIN32)
  target_link_options(orl_strict INTERFACE "LINKER:--file-alignment,4096")
endif()

if(ORL_SANITIZE)
  add_compile_options(-fsanitize=${ORL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${ORL_SANITIZE})
endif()

if(ORL_BUILD_FUZZ)
  # Instruments the libraries for the fuzzer too, not only the fuzz targets.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
