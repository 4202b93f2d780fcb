function(vantor_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    -Wno-sign-conversion -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough)
  if(VANTOR_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
