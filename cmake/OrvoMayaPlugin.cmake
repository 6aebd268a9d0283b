# What Maya expects of a plug-in, and its headers of those who include them.

# The definitions that the host's headers ask for on this platform, in the variable of that name.
function(orvo_maya_definitions variable)
  if(WIN32)
    # NOMINMAX: windows.h, which GL needs, must not take the names of std::min and std::max.
    set(${variable} NT_PLUGIN REQUIRE_IOSTREAM _BOOL NOMINMAX PARENT_SCOPE)
  else()
    set(${variable} LINUX LINUX_64 UNIX REQUIRE_IOSTREAM _BOOL Bits64_ PARENT_SCOPE)
  endif()
endfunction()

# A module with the name and the exports of a plug-in; `objects` is the library that holds its sources.
function(orvo_maya_plugin target objects)
  if(WIN32)
    set_target_properties(${target} PROPERTIES SUFFIX ".mll")
    # The list of exports that both Microsoft's linker and GNU's read.
    target_sources(${target} PRIVATE "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/OrvoPluginExports.def")
  else()
    # The devkit's headers need not mark what must be visible; the list of exports hides the rest.
    set_target_properties(${objects} PROPERTIES CXX_VISIBILITY_PRESET default VISIBILITY_INLINES_HIDDEN OFF)
  endif()
endfunction()
