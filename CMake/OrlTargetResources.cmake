# orl_target_resources(target file.rc... [DEPENDS file...] [INCLUDE_DIRECTORIES dir...])
#
# Compiles Windows resource scripts (UTF-8) into a target: a plug-in, a library or a program.
#   Windows  the linker stores them as the module's resources.
#   Linux    the compiled file (.res) is in the module's read-only data, and a note with owner "ORL" locates it.
# ORL::Module finds the resources on both platforms. DEPENDS lists the files that the scripts use besides #include
# files: pictures, tables. Files are searched for in the script's folder, then in INCLUDE_DIRECTORIES. Needs
# x86_64-w64-mingw32-windres (Debian: binutils-mingw-w64-x86-64) or the RC compiler of MSVC.

cmake_policy(SET CMP0116 NEW) # generated dependencies are relative to the build folder

function(orl_target_resources target)
  cmake_parse_arguments(arg "" "" "DEPENDS;INCLUDE_DIRECTORIES" ${ARGN})
  if(NOT arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "orl_target_resources: name the resource scripts of ${target}.")
  endif()
  set(number 0)
  get_target_property(known ${target} ORL_RESOURCE_SCRIPTS)
  if(known)
    set(number ${known})
  endif()
  foreach(script IN LISTS arg_UNPARSED_ARGUMENTS)
    get_filename_component(script "${script}" ABSOLUTE)
    if(MSVC)
      target_sources(${target} PRIVATE "${script}")
      set_source_files_properties("${script}" PROPERTIES COMPILE_OPTIONS "/c65001" OBJECT_DEPENDS "${arg_DEPENDS}")
    else()
      _orl_compile_resources(${target} "${script}" ${number} "${arg_DEPENDS}" "${arg_INCLUDE_DIRECTORIES}")
    endif()
    math(EXPR number "${number} + 1")
  endforeach()
  set_target_properties(${target} PROPERTIES ORL_RESOURCE_SCRIPTS ${number})
endfunction()

# Compiles one script and adds the result to the target's sources.
function(_orl_compile_resources target script number depends include_directories)
  find_program(ORL_WINDRES NAMES x86_64-w64-mingw32-windres windres DOC "The resource compiler")
  if(NOT ORL_WINDRES)
    message(FATAL_ERROR "orl_target_resources needs x86_64-w64-mingw32-windres (Debian: binutils-mingw-w64-x86-64).")
  endif()
  get_filename_component(name "${script}" NAME_WE)
  get_filename_component(folder "${script}" DIRECTORY)
  set(base "${CMAKE_CURRENT_BINARY_DIR}/${target}.resources/${name}.${number}")
  set(compiled "${base}.res")
  set(format res)
  if(WIN32)
    set(compiled "${base}.obj")
    set(format coff)
  endif()
  # The resource compiler's package contains no preprocessor, so our compiler preprocesses the script.
  set(options -c 65001 "--preprocessor=${CMAKE_CXX_COMPILER}" --preprocessor-arg=-E --preprocessor-arg=-xc
    --preprocessor-arg=-DRC_INVOKED --preprocessor-arg=-MD "--preprocessor-arg=-MF${base}.d"
    "--preprocessor-arg=-MT${compiled}" "-I${folder}")
  foreach(include_directory IN LISTS include_directories)
    get_filename_component(include_directory "${include_directory}" ABSOLUTE)
    list(APPEND options "-I${include_directory}")
  endforeach()
  file(MAKE_DIRECTORY "${CMAKE_CURRENT_BINARY_DIR}/${target}.resources")
  add_custom_command(OUTPUT "${compiled}"
    COMMAND "${ORL_WINDRES}" ${options} -O ${format} "${script}" "${compiled}"
    DEPENDS "${script}" ${depends} DEPFILE "${base}.d" VERBATIM
    COMMENT "Compiling the resources of ${target}")
  if(WIN32)
    set_source_files_properties("${compiled}" PROPERTIES EXTERNAL_OBJECT ON GENERATED ON)
    target_sources(${target} PRIVATE "${compiled}")
  else()
    _orl_embed_resources(${target} "${compiled}" "${base}.cpp")
  endif()
endfunction()

# Writes a source whose object contains the compiled file and a note with the file's size and its offset from the note's
# contents. File and note need no symbol and no relocation, so both survive strip, and a module can be moved.
function(_orl_embed_resources target compiled source)
  file(CONFIGURE OUTPUT "${source}" @ONLY CONTENT [=[
// Written by orl_target_resources.
__asm__(".pushsection .orl_resources, \"a\", @progbits\n"
        ".balign 8\n"
        "7771: .incbin \"@compiled@\"\n"
        "7772:\n"
        ".popsection\n"
        ".pushsection .note.orl.resources, \"a\", @note\n"
        ".balign 4\n"
        ".long 4\n"
        ".long 16\n"
        ".long 1\n"
        ".asciz \"ORL\"\n"
        "7773: .quad 7771b - 7773b\n"
        ".quad 7772b - 7771b\n"
        ".popsection\n");
]=])
  set_source_files_properties("${source}" PROPERTIES OBJECT_DEPENDS "${compiled}" GENERATED ON)
  target_sources(${target} PRIVATE "${source}")
endfunction()
