# Installs the programs, the library, its header, the fakes, the documents and the manual pages.

install(TARGETS brevold-replay brevold-sim brevold brevold_profile)
install(TARGETS fake_perf_client fake_feature_switch
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/brevold)
install(FILES brevold/brevold.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/brevold)
install(FILES README.md CHANGELOG.md LICENSE TYPE DOC)
install(DIRECTORY docs TYPE DOC)
install(DIRECTORY examples TYPE DOC
    FILES_MATCHING PATTERN *.md PATTERN *.profile PATTERN *.device PATTERN *.workload PATTERN *.summary PATTERN *.ftrace.txt)

# add_man_page(TARGET DESCRIPTION): makes and installs a manual page from the program's --help.
function(add_man_page target description)
    set(page ${CMAKE_BINARY_DIR}/man/${target}.1)
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/man)
    add_custom_command(OUTPUT ${page}
        COMMAND ${HELP2MAN} --no-info --name=${description} --version-string=${PROJECT_VERSION}
            --output=${page} $<TARGET_FILE:${target}>
        DEPENDS ${target}
        VERBATIM)
    add_custom_target(${target}-man ALL DEPENDS ${page})
    install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endfunction()

find_program(HELP2MAN help2man)
if(CMAKE_CROSSCOMPILING)
    message(STATUS "Cross-compiling: no manual page is made")
elseif(NOT HELP2MAN)
    message(STATUS "help2man is not installed: no manual page is made")
else()
    add_man_page(brevold-replay "replays a recorded trace through libbrevold")
    add_man_page(brevold-sim "simulates libbrevold in a closed loop with application and processor")
endif()
