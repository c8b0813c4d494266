# Writes OUT: a C++ source that registers each of FILES as a resource source of the
# module it is linked into (the stand-in's counterpart of the resource compiler).
include(${CMAKE_CURRENT_LIST_DIR}/embed_files.cmake)
set(body "// Generated from resources/; do not edit.\n#include \"platform/winapi.h\"\n\n")
append_char_arrays(body resource)
set(registrations "")
set(index 0)
foreach(f ${FILES})
  get_filename_component(name ${f} NAME)
  string(APPEND registrations "        RegisterModuleResource(resource${index}, \"${name}\", resource${index});\n")
  math(EXPR index "${index} + 1")
endforeach()
string(APPEND body "\nnamespace {\nstruct ResourceRegistrar {\n    ResourceRegistrar()\n    {\n${registrations}    }\n} resourceRegistrar;\n}\n")
write_source("${body}")
