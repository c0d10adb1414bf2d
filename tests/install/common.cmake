# What the scripts of this folder share.

# run(COMMAND...): its output in `output`; whoever runs a command that fails, fails.
function(run)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN}\nended with ${result}\n${output}${errors}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

# save_code(LANGUAGE FILE): the first block of that language in the page that newcomers follow.
function(save_code language file)
  file(READ "${page}" text)
  string(FIND "${text}" "\n```${language}\n" start)
  if(start EQUAL -1)
    message(FATAL_ERROR "${page} has no code in ${language}")
  endif()
  string(LENGTH "\n```${language}\n" skipped)
  math(EXPR start "${start} + ${skipped}")
  string(SUBSTRING "${text}" ${start} -1 text)
  string(FIND "${text}" "\n```" end)
  string(SUBSTRING "${text}" 0 ${end} text)
  file(WRITE "${file}" "${text}\n")
endfunction()
