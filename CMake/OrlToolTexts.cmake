# Generates the manual page and the completions by running orl, and installs them in their usual places. A cross-build
# cannot run orl and installs neither.
set(texts "${PROJECT_BINARY_DIR}/share/orl")
file(MAKE_DIRECTORY "${texts}")
set(text_files "${texts}/orl.1.gz" "${texts}/orl.bash" "${texts}/orl.zsh" "${texts}/orl.fish")
find_program(ORL_GZIP gzip REQUIRED)
# With -n the result depends on the page only, not on its time.
add_custom_command(OUTPUT ${text_files}
  COMMAND orl help --man > "${texts}/orl.1"
  COMMAND ${ORL_GZIP} -9nf "${texts}/orl.1"
  COMMAND orl completion bash > "${texts}/orl.bash"
  COMMAND orl completion zsh > "${texts}/orl.zsh"
  COMMAND orl completion fish > "${texts}/orl.fish"
  DEPENDS orl VERBATIM COMMENT "Writing the manual page and the completions of orl")
add_custom_target(orl_texts ALL DEPENDS ${text_files})

install(FILES "${texts}/orl.1.gz" DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
install(FILES "${texts}/orl.bash" DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME orl
  COMPONENT tools)
install(FILES "${texts}/orl.fish" DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT tools)
# Debian's zsh searches vendor-completions below /usr, and site-functions below /usr/local.
install(CODE "
  set(folder site-functions)
  if(CMAKE_INSTALL_PREFIX STREQUAL \"/usr\")
    set(folder vendor-completions)
  endif()
  file(INSTALL \"${texts}/orl.zsh\" DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/zsh/\${folder}\"
    RENAME _orl)" COMPONENT tools)
