# Makes LIBRARY, an import library of the symbols of the host's classes that the OBJECTS leave undefined.
cmake_minimum_required(VERSION 3.25)
list(FILTER OBJECTS INCLUDE REGEX "\\.obj$") # not the precompiled header
execute_process(COMMAND "${NM}" --undefined-only --format=just-symbols ${OBJECTS}
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" symbols "${symbols}")
list(TRANSFORM symbols STRIP)
# What was declared as another module's, members of the classes M... that tables of virtual functions name, and the
# tables that the compiler makes of those classes.
set(functions "${symbols}")
list(FILTER functions INCLUDE REGEX "^(__imp__Z|_ZNK?[0-9]+M[A-Z3])")
list(FILTER functions EXCLUDE REGEX "^__imp__ZT[VIS]")
set(data "${symbols}")
list(FILTER data INCLUDE REGEX "^(__imp_|\\.refptr\\.|)_ZT[VIS][0-9]+M[A-Z3]")
foreach(kind functions data)
  list(TRANSFORM ${kind} REPLACE "^(__imp_|\\.refptr\\.)" "")
  list(REMOVE_DUPLICATES ${kind})
  list(SORT ${kind})
endforeach()
list(LENGTH functions function_count)
list(LENGTH data data_count)
message(STATUS "The plug-in wants ${function_count} functions and ${data_count} tables of the host")

list(JOIN functions "\n" functions)
set(lines "EXPORTS\n${functions}\n")
foreach(name IN LISTS data)
  string(APPEND lines "${name} DATA\n")
endforeach()
file(WRITE "${LIBRARY}.def" "${lines}")
execute_process(COMMAND "${DLLTOOL}" --dllname orvohost.dll --input-def "${LIBRARY}.def" --output-lib "${LIBRARY}"
  COMMAND_ERROR_IS_FATAL ANY)
