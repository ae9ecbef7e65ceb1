# Warning flags shared by every Satwalk target.
function(satwalk_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow
                                           -Wconversion -Wno-sign-conversion)
endfunction()
