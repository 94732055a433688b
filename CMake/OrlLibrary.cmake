include(GNUInstallDirs)

# The ABI number. While the major version is 0, each minor version has an ABI of its own.
set(ORL_ABI "${PROJECT_VERSION_MAJOR}")
if(PROJECT_VERSION_MAJOR EQUAL 0)
  string(APPEND ORL_ABI ".${PROJECT_VERSION_MINOR}")
endif()

# orl_set_abi(target library abi): names a shared library's file after an ABI, so that libraries of several versions
# can share one process. On Linux its symbols have the version lib<library>.so.<abi>; on Windows a symbol is bound
# to the name of its DLL.
function(orl_set_abi target library abi)
  set_target_properties(${target} PROPERTIES OUTPUT_NAME ${library} SOVERSION ${abi})
  if(WIN32)
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_NAME ${library}-${abi})
    return()
  endif()
  set(ORL_SONAME "lib${library}.so.${abi}")
  set(map "${PROJECT_BINARY_DIR}/exports/${target}.map")
  configure_file("${PROJECT_SOURCE_DIR}/CMake/Exports/${library}.map.in" "${map}" @ONLY)
  target_link_options(${target} PRIVATE "LINKER:--version-script=${map}")
  set_target_properties(${target} PROPERTIES LINK_DEPENDS "${map}")
endfunction()

# orl_library(name ROOT folder [HEADERS dir] [PRIVATE_HEADERS dir] [SOURCES dir] [LINK_PUBLIC ...] [LINK_PRIVATE ...])
#
# Makes three targets from one set of objects:
#   <name>          the shared library that ships, exported as ORL::<name>; ORLFoundation as ORL::Foundation
#   <name>_objects  the objects
#   <name>_private  a static library of the same objects, with which the tests access private code
# Sources are all .cpp files below SOURCES (default: Src), except the folder of the other platform.
function(orl_library name)
  cmake_parse_arguments(arg "" "ROOT;HEADERS;PRIVATE_HEADERS;SOURCES" "LINK_PUBLIC;LINK_PRIVATE" ${ARGN})
  set(root "${CMAKE_CURRENT_SOURCE_DIR}/${arg_ROOT}")
  cmake_path(NORMAL_PATH root) # the messages of contract checks contain this path
  string(REGEX REPLACE "/$" "" root "${root}")
  set(headers "${root}/Inc")
  set(sources "${root}/Src")
  if(arg_HEADERS)
    set(headers "${root}/${arg_HEADERS}")
  endif()
  if(arg_SOURCES)
    set(sources "${root}/${arg_SOURCES}")
  endif()
  file(GLOB_RECURSE files CONFIGURE_DEPENDS "${sources}/*.cpp")
  if(WIN32)
    list(FILTER files EXCLUDE REGEX "/Src/Linux/")
  else()
    list(FILTER files EXCLUDE REGEX "/Src/Win/")
  endif()

  set(include_dirs $<BUILD_INTERFACE:${headers}>)
  if(arg_PRIVATE_HEADERS)
    set(private_dir "${root}/${arg_PRIVATE_HEADERS}")
  else()
    set(private_dir "${sources}")
  endif()

  # The private libraries link each other, so a test contains one copy of everything.
  set(own_twins "")
  foreach(library IN LISTS arg_LINK_PUBLIC arg_LINK_PRIVATE)
    if(TARGET ${library}_private)
      list(APPEND own_twins ${library}_private)
    else()
      list(APPEND own_twins ${library})
    endif()
  endforeach()

  add_library(${name}_objects OBJECT ${files})
  target_include_directories(${name}_objects PUBLIC ${include_dirs} PRIVATE "${private_dir}")
  target_include_directories(${name}_objects PRIVATE "${PROJECT_BINARY_DIR}/include")
  target_compile_definitions(${name}_objects PRIVATE ${name}_BUILDING)
  target_link_libraries(${name}_objects PUBLIC ${arg_LINK_PUBLIC} PRIVATE ${arg_LINK_PRIVATE} orl_strict)

  add_library(${name} SHARED $<TARGET_OBJECTS:${name}_objects>)
  string(REGEX REPLACE "^ORL" "" exported_name ${name})
  add_library(ORL::${exported_name} ALIAS ${name})
  target_include_directories(${name} PUBLIC ${include_dirs} $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/ORLFoundation>)
  target_compile_features(${name} PUBLIC cxx_std_17) # for hosts whose compiler defaults to an older standard
  target_link_libraries(${name} PUBLIC ${arg_LINK_PUBLIC} PRIVATE ${arg_LINK_PRIVATE} orl_strict)
  set_target_properties(${name} PROPERTIES
    LINKER_LANGUAGE CXX EXPORT_NAME ${exported_name} VERSION ${PROJECT_VERSION}
    # The libraries find each other wherever the tree is moved, including in the build tree. CMake would pad a separate
    # path for the build tree with ":" to the length of this path, and the loader treats an empty entry as the current
    # folder.
    INSTALL_RPATH "$ORIGIN" BUILD_WITH_INSTALL_RPATH ON)

  orl_set_abi(${name} ${name} ${ORL_ABI})

  add_library(${name}_private STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:${name}_objects>)
  target_include_directories(${name}_private PUBLIC ${include_dirs} "${private_dir}" "${PROJECT_BINARY_DIR}/include")
  target_link_libraries(${name}_private PUBLIC ${own_twins})
  set_target_properties(${name}_private PROPERTIES LINKER_LANGUAGE CXX)
  # With clang, the sanitizers' symbols are only in the program, not in the libraries.
  if(NOT WIN32 AND NOT (ORL_SANITIZE AND CMAKE_CXX_COMPILER_ID MATCHES "Clang"))
    target_link_options(${name} PRIVATE -Wl,--no-undefined)
  endif()
  # The start-up code of each library uses the C library, but only by weak symbols, for which the linker records no
  # dependency.
  if(NOT WIN32)
    target_link_options(${name} PRIVATE LINKER:--push-state,--no-as-needed,-lc,--pop-state)
  endif()
endfunction()

# build/include/ORLVersion.h
function(orl_version_header)
  configure_file("${PROJECT_SOURCE_DIR}/CMake/ORLVersion.h.in" "${PROJECT_BINARY_DIR}/include/ORLVersion.h" @ONLY)
endfunction()
