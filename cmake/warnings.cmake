# Compiler warnings for the project's own targets; -Werror where VNXML_WERROR is on (CI).
function(vnxml_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow)
  if(VNXML_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
