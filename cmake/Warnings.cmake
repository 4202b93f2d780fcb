function(vantor_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    -Wno-sign-conversion -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # GCC 12 reports -Wrestrict inside libstdc++'s own string concatenation at
    # -O2 (GCC bug 105329), a false alarm that would fail every release build.
    # It likewise reports -Warray-bounds and -Wstringop-* inside std::vector's insert when the
    # optimiser inlines it into a caller with a fixed size (GCC bug 107852).
    # Real bounds errors are the sanitizer build's to find.
    target_compile_options(${target} PRIVATE -Wno-restrict -Wno-array-bounds -Wno-stringop-overflow
      -Wno-stringop-overread)
  endif()
  if(VANTOR_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
