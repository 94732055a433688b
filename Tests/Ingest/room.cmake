orl_test_folder(Common)
orl_test_folder(Program)
orl_test_folder(Verify)

# The tests run the program that is built in the same folder.
add_dependencies(${room_target} orl)
if(TARGET run_restricted)
  add_dependencies(${room_target} run_restricted)
endif()

set(orl_folder "${PROJECT_SOURCE_DIR}/Tools/orl")

# The parts of an ingest and of a verification are also compiled into the tests, so that a test can act between two steps.
file(GLOB_RECURSE ingest_files CONFIGURE_DEPENDS "${orl_folder}/Common/*.cpp" "${orl_folder}/Ingest/*.cpp"
  "${orl_folder}/Verify/*.cpp")
list(FILTER ingest_files EXCLUDE REGEX "/(Ingest/Ingest|Verify/Verify)\\.cpp$") # these two define command lines
if(WIN32)
  list(FILTER ingest_files EXCLUDE REGEX "/Linux[A-Za-z0-9]*\\.cpp$")
  target_link_libraries(${room_target} PRIVATE bcrypt)
else()
  list(FILTER ingest_files EXCLUDE REGEX "/Win[A-Za-z0-9]*\\.cpp$")
  find_package(OpenSSL REQUIRED COMPONENTS Crypto)
  target_link_libraries(${room_target} PRIVATE OpenSSL::Crypto)
endif()
target_sources(${room_target} PRIVATE ${ingest_files})
set_property(SOURCE "${orl_folder}/Common/Json.cpp" APPEND PROPERTY COMPILE_OPTIONS "-isystem${json_include}")
set_property(SOURCE "${orl_folder}/Common/Hash/XxHash.cpp" APPEND PROPERTY COMPILE_OPTIONS -isystem
  "${xxhash_include}")
target_include_directories(${room_target} PRIVATE "${orl_folder}/Common" "${orl_folder}/Common/Output"
  "${orl_folder}/Common/Terminal" "${orl_folder}/Ingest" "${orl_folder}/Ingest/Plan" "${orl_folder}/Ingest/Record"
  "${orl_folder}/Ingest/Report")

file(GLOB verify_files CONFIGURE_DEPENDS "${orl_folder}/Verify/*.cpp" Ingest/Verify/*Test.cpp)
set_property(SOURCE ${verify_files} APPEND PROPERTY INCLUDE_DIRECTORIES "${orl_folder}" "${orl_folder}/Verify")
set_property(SOURCE "${orl_folder}/Verify/VerifyMerge.cpp" APPEND PROPERTY COMPILE_OPTIONS -isystem
  "${json_include}")
set_property(SOURCE Ingest/Verify/VerifyFarmLinuxTest.cpp APPEND PROPERTY COMPILE_DEFINITIONS
  "ORL_FARM_SCRIPT=\"sh ${PROJECT_SOURCE_DIR}/Examples/Farm/verify-part.sh\"")
