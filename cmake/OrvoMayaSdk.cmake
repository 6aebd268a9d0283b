# The plug-in against a Maya devkit: ORVOSKY_MAYA_SDK names the folder that holds include/maya and lib.
#
# Gives the target orvo_host_api (headers, libraries and definitions of that host) and the function orvo_maya_plugin,
# which gives a module what that host expects of its name and exports.

set(orvo_sdk "${ORVOSKY_MAYA_SDK}")
if(NOT IS_DIRECTORY "${orvo_sdk}")
  message(FATAL_ERROR "ORVOSKY_MAYA_SDK: there is no folder \"${orvo_sdk}\"")
endif()

find_path(ORVOSKY_MAYA_INCLUDE maya/MFnPlugin.h
  PATHS "${orvo_sdk}" PATH_SUFFIXES include devkit/include NO_DEFAULT_PATH NO_CACHE)
if(NOT ORVOSKY_MAYA_INCLUDE)
  message(FATAL_ERROR "ORVOSKY_MAYA_SDK: no maya/MFnPlugin.h in \"include\" or \"devkit/include\" of \"${orvo_sdk}\"")
endif()

set(orvo_sdk_libraries "")
foreach(name OpenMaya OpenMayaUI Foundation)
  find_library(orvo_sdk_${name} ${name} PATHS "${orvo_sdk}" PATH_SUFFIXES lib devkit/lib NO_DEFAULT_PATH NO_CACHE)
  if(NOT orvo_sdk_${name})
    message(FATAL_ERROR "ORVOSKY_MAYA_SDK: no library ${name} in \"lib\" or \"devkit/lib\" of \"${orvo_sdk}\"")
  endif()
  list(APPEND orvo_sdk_libraries "${orvo_sdk_${name}}")
endforeach()
message(STATUS "Building the plug-in for the Maya devkit in ${orvo_sdk}")

add_library(orvo_host_api INTERFACE)
target_include_directories(orvo_host_api SYSTEM INTERFACE "${ORVOSKY_MAYA_INCLUDE}")
target_link_libraries(orvo_host_api INTERFACE ${orvo_sdk_libraries})
if(WIN32)
  # NOMINMAX: windows.h, which GL needs, must not take the names of std::min and std::max.
  target_compile_definitions(orvo_host_api INTERFACE NT_PLUGIN REQUIRE_IOSTREAM _BOOL NOMINMAX)
else()
  target_compile_definitions(orvo_host_api INTERFACE LINUX LINUX_64 UNIX REQUIRE_IOSTREAM _BOOL Bits64_)
endif()

function(orvo_maya_plugin target)
  if(WIN32)
    set_target_properties(${target} PROPERTIES SUFFIX ".mll")
    target_link_options(${target} PRIVATE /export:initializePlugin /export:uninitializePlugin)
  else()
    # The devkit's headers need not mark what must be visible; the list of exports hides the rest.
    set_target_properties(orvosky_objects PROPERTIES CXX_VISIBILITY_PRESET default VISIBILITY_INLINES_HIDDEN OFF)
  endif()
endfunction()
