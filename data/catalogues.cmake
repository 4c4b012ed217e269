# The translator's sources of both message catalogues, made from the tables of texts, and compiled by gencat: in
# ${CMAKE_BINARY_DIR}/catalogues. A warning of gencat means a message left out, so it fails the build.
file(GLOB tabellen CONFIGURE_DEPENDS src/*/teksten.def src/*/*/teksten.def)
set(alle "")
foreach(tabel ${tabellen})
  string(APPEND alle "#include \"${tabel}\"\n")
endforeach()
file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/tables/teksten_alle.def CONTENT "${alle}")
add_executable(zgteksten src/tools/zgteksten.cpp)
target_include_directories(zgteksten PRIVATE src ${CMAKE_BINARY_DIR})
target_compile_options(zgteksten PRIVATE ${ZG_WARNINGS})
find_program(GENCAT gencat)
if(GENCAT)
  set(catalogues)
  foreach(naam ZEBCAT DETAIL)
    set(uit ${CMAKE_BINARY_DIR}/catalogues/${naam})
    add_custom_command(OUTPUT ${uit} DEPENDS zgteksten VERBATIM
      COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/catalogues
      COMMAND sh -c "rm -f '${uit}' && $<TARGET_FILE:zgteksten> ${naam} > '${uit}.msg' && out=$(LC_ALL=C '${GENCAT}' '${uit}' '${uit}.msg' 2>&1); echo \"$out\" | grep . && exit 1; test -s '${uit}'")
    list(APPEND catalogues ${uit})
  endforeach()
  add_custom_target(catalogues ALL DEPENDS ${catalogues})
endif()
