# Writes OUT, a source with the commit that SOURCE stands at, when it has changed. GIVEN, where it isn't empty, says it
# instead. Without git the file cmake/commit has it, which "git archive" fills in.
cmake_policy(VERSION 3.25)
set(commit "${GIVEN}")
if(NOT commit AND EXISTS "${SOURCE}/.git")
  find_program(GIT git)
  if(GIT)
    set(git ${GIT} -c safe.directory=* -C "${SOURCE}")
    execute_process(COMMAND ${git} rev-parse --short=12 HEAD OUTPUT_VARIABLE commit ERROR_QUIET
                    OUTPUT_STRIP_TRAILING_WHITESPACE)
    execute_process(COMMAND ${git} diff --quiet HEAD RESULT_VARIABLE changed ERROR_QUIET)
    if(commit AND NOT changed EQUAL 0)
      string(APPEND commit "+")
    endif()
  endif()
endif()
if(NOT commit)
  file(STRINGS "${SOURCE}/cmake/commit" commit LIMIT_COUNT 1)
  if(commit MATCHES "Format")
    set(commit unknown)
  endif()
endif()
file(CONFIGURE OUTPUT "${OUT}" CONTENT "namespace zg {
extern const char COMMIT[];
const char COMMIT[] = \"${commit}\";
} // namespace zg
" @ONLY)
