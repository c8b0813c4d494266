# What the scripts that compile files into C++ sources share (embed_resources.cmake,
# embed_web.cmake): FILES, given as a "|"-separated list, each file's bytes as a char array,
# and a write that leaves an unchanged source untouched.
string(REPLACE "|" ";" FILES "${FILES}")

# Appends to VAR "static const char PREFIXi[] = {...};" for the i-th of FILES (from 0): its
# bytes and a terminating NUL.
function(append_char_arrays var prefix)
  set(text "${${var}}")
  set(index 0)
  foreach(f ${FILES})
    file(READ ${f} hex HEX)
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${hex}")
    string(APPEND text "static const char ${prefix}${index}[] = {${bytes}'\\0'};\n")
    math(EXPR index "${index} + 1")
  endforeach()
  set(${var} "${text}" PARENT_SCOPE)
endfunction()

# Writes TEXT to OUT, touching OUT only when the text changed (no needless rebuilds).
function(write_source text)
  file(WRITE ${OUT}.tmp "${text}")
  execute_process(COMMAND ${CMAKE_COMMAND} -E copy_if_different ${OUT}.tmp ${OUT})
endfunction()
