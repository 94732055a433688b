# Packages of the 64-bit Windows build: Boost's headers of this machine, and Boost.Thread built from the three Windows
# files of Boost's source, because no package contains it for this compiler.

set(ORL_BOOST_SOURCE "" CACHE PATH "Folder that holds libs/thread of Boost's source package")

# A folder that contains only Boost's headers, so that the compiler finds nothing else in the machine's include folder.
set(boost_include "${PROJECT_BINARY_DIR}/boost-include")
file(MAKE_DIRECTORY "${boost_include}")
if(NOT EXISTS "${boost_include}/boost")
  file(CREATE_LINK /usr/include/boost "${boost_include}/boost" SYMBOLIC)
endif()

add_library(orl_boost_headers INTERFACE)
add_library(Boost::headers ALIAS orl_boost_headers)
target_include_directories(orl_boost_headers SYSTEM INTERFACE $<BUILD_INTERFACE:${boost_include}>)

set(boost_thread_source "${ORL_BOOST_SOURCE}/libs/thread/src")
if(NOT EXISTS "${boost_thread_source}/win32/thread.cpp")
  message(FATAL_ERROR "ORL_BOOST_SOURCE does not hold libs/thread/src/win32/thread.cpp; Scripts/setup fetches it.")
endif()
add_library(orl_boost_thread SHARED
  "${boost_thread_source}/win32/thread.cpp"
  "${boost_thread_source}/win32/thread_primitives.cpp"
  "${boost_thread_source}/win32/tss_dll.cpp"
  "${boost_thread_source}/future.cpp")
# The DLL's file name contains Boost's version, because a plug-in in the same process may ship a different version.
file(STRINGS "${boost_include}/boost/version.hpp" ORL_PACKAGE_BOOST_VERSION REGEX "#define BOOST_LIB_VERSION \"[0-9_]+\"")
string(REGEX REPLACE ".*\"([0-9_]+)\".*" "\\1" ORL_PACKAGE_BOOST_VERSION "${ORL_PACKAGE_BOOST_VERSION}")
set_target_properties(orl_boost_thread PROPERTIES OUTPUT_NAME boost_thread CXX_VISIBILITY_PRESET default
  RUNTIME_OUTPUT_NAME boost_thread-${ORL_PACKAGE_BOOST_VERSION})
target_compile_definitions(orl_boost_thread
  PRIVATE BOOST_THREAD_BUILD_DLL BOOST_ALL_NO_LIB
  INTERFACE BOOST_THREAD_USE_DLL)
target_compile_options(orl_boost_thread PRIVATE -w)
target_link_libraries(orl_boost_thread PUBLIC orl_boost_headers)
set(ORL_BOOST_THREAD orl_boost_thread)
set(ORL_ICU "")
set(ORL_URING "")
set(ORL_SYSTEM_LIBRARIES shlwapi pdh psapi gdiplus gdi32)
# The import library for WaitOnAddress, WakeByAddressSingle and WakeByAddressAll.
set(ORL_SYNCHRONIZATION synchronization)

# Copies the toolchain's runtime libraries next to the programs, so that the programs run from their folder. The copies
# can be mapped (see OrlPlatform.cmake).
foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
    OUTPUT_VARIABLE dll_path OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT EXISTS "${dll_path}")
    set(dll_path "/usr/x86_64-w64-mingw32/lib/${dll}")
  endif()
  set(dll_copy "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${dll}")
  if(NOT EXISTS "${dll_copy}" OR "${dll_path}" IS_NEWER_THAN "${dll_copy}")
    file(MAKE_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
    execute_process(COMMAND ${CMAKE_OBJCOPY} --strip-debug --file-alignment=4096 "${dll_path}" "${dll_copy}"
      COMMAND_ERROR_IS_FATAL ANY)
  endif()
  list(APPEND ORL_TOOLCHAIN_DLLS "${dll_path}")
endforeach()
