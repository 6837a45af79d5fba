# Turns a text file into a C++ source that holds it as a character array, at build time:
#   cmake -DINPUT=file -DOUTPUT=file.cpp -DNAME=kName -DHEADER=path/of/its/header.h -P EmbedText.cmake
# It defines `const char NAME[]` (the text, NUL-terminated) and `const unsigned long NAME##Size`.
# The text goes in as raw string literals of at most 60000 bytes each, the size a compiler is
# sure to take; the file must not hold the literal's terminator.
file(READ "${INPUT}" text)
string(FIND "${text}" ")ZTEXT\"" bad)
if(NOT bad EQUAL -1)
  message(FATAL_ERROR "${INPUT} holds the sequence that ends a raw string literal")
endif()
string(LENGTH "${text}" length)
set(out "// Made at build time from ${INPUT} by cmake/EmbedText.cmake.\n#include \"${HEADER}\"\n\nconst char ${NAME}[] =\n")
set(chunk 60000)
set(pos 0)
while(pos LESS length)
  string(SUBSTRING "${text}" ${pos} ${chunk} part)
  string(APPEND out "R\"ZTEXT(${part})ZTEXT\"\n")
  math(EXPR pos "${pos} + ${chunk}")
endwhile()
string(APPEND out ";\n\nconst unsigned long ${NAME}Size = sizeof(${NAME}) - 1;\n")
file(WRITE "${OUTPUT}.tmp" "${out}")
file(RENAME "${OUTPUT}.tmp" "${OUTPUT}")
