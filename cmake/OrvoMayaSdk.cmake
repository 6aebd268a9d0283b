# The plug-in against a Maya devkit: ORVOSKY_MAYA_SDK names the folder that holds include/maya and lib.
#
# Gives the target orvo_host_api (headers, libraries and definitions of that host) and the function orvo_maya_plugin.

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
include(OrvoMayaPlugin)
orvo_maya_definitions(orvo_definitions)
target_compile_definitions(orvo_host_api INTERFACE ${orvo_definitions})
