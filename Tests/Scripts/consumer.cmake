# Installs the build, moves the installed tree, and builds and runs a host against it.
if(NOT ORL_SANITIZE)
  add_test(NAME Package.HostBuildsAgainstTheMovedInstallation
    COMMAND ${CMAKE_COMMAND}
      -D BUILD_DIR=${CMAKE_BINARY_DIR} -D SOURCE_DIR=${PROJECT_SOURCE_DIR}
      -D TOOLCHAIN=${CMAKE_TOOLCHAIN_FILE} -D VERSION=${PROJECT_VERSION}
      -P ${CMAKE_CURRENT_SOURCE_DIR}/Consumer/run.cmake)
  set_tests_properties(Package.HostBuildsAgainstTheMovedInstallation PROPERTIES TIMEOUT 300)
endif()

# A host that touches every public class, linked to the shared libraries at each optimisation level.
if(NOT ORL_SANITIZE)
  foreach(level 0 1 2 3)
    add_executable(every_class_O${level} Consumer/EveryClass/EveryClass.cpp)
    target_link_libraries(every_class_O${level} PRIVATE ORLFoundation orl_strict)
    target_compile_options(every_class_O${level} PRIVATE -O${level} -g0)
    add_test(NAME Package.EveryClassLinksAtO${level} COMMAND every_class_O${level})
    set_tests_properties(Package.EveryClassLinksAtO${level} PROPERTIES TIMEOUT ${ORL_TEST_TIMEOUT}
      PASS_REGULAR_EXPRESSION "every class touched" FAIL_REGULAR_EXPRESSION "Contract broken;Assertion failed")
  endforeach()
endif()
if(NOT WIN32 AND NOT ORL_SANITIZE)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  add_test(NAME Package.EveryClassIsTouched
    COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/Consumer/check_every_class.py")
  add_test(NAME Package.UntouchedClassesAreFound
    COMMAND Python3::Interpreter "${CMAKE_CURRENT_SOURCE_DIR}/Consumer/check_every_class_test.py")
  set_tests_properties(Package.EveryClassIsTouched Package.UntouchedClassesAreFound PROPERTIES TIMEOUT 60)
endif()
