# Each library must export only what its public headers declare, and have a soname with its major version.
if(NOT WIN32 AND NOT ORL_SANITIZE)
  foreach(library tvxmediatypes tvxcore CRV ORLFoundation)
    add_test(NAME Package.${library}.ExportsNothingPrivate
      COMMAND ${CMAKE_COMMAND} -DLIBRARY=$<TARGET_FILE:${library}> -DNM=${CMAKE_NM} -DOBJDUMP=${CMAKE_OBJDUMP}
              -DSONAME=lib${library}.so.${PROJECT_VERSION_MAJOR} -P ${CMAKE_CURRENT_SOURCE_DIR}/Foundation/private_symbols.cmake)
    set_tests_properties(Package.${library}.ExportsNothingPrivate PROPERTIES TIMEOUT 60)
  endforeach()
endif()
