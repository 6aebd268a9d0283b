# Configures the plug-in alone, for a folder that looks like a devkit: -DSOURCE=... -DFOLDER=... -DCOMPILER=...
file(REMOVE_RECURSE "${FOLDER}")
file(MAKE_DIRECTORY "${FOLDER}/devkit/include" "${FOLDER}/devkit/lib")
file(CREATE_LINK "${SOURCE}/host/include/maya" "${FOLDER}/devkit/include/maya" SYMBOLIC)
foreach(name OpenMaya OpenMayaUI Foundation)
  file(TOUCH "${FOLDER}/devkit/lib/lib${name}.so")
endforeach()
execute_process(COMMAND "${CMAKE_COMMAND}" -S "${SOURCE}" -B "${FOLDER}/build" -G Ninja
  "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DORVOSKY_MAYA_SDK=${FOLDER}/devkit" -DCMAKE_BUILD_TYPE=Release
  COMMAND_ERROR_IS_FATAL ANY)
file(READ "${FOLDER}/build/plugin/cmake_install.cmake" rules)
foreach(wanted plug-ins/orvosky.so orvosky.mod)
  if(NOT rules MATCHES "${wanted}")
    message(FATAL_ERROR "${wanted} is not installed.")
  endif()
endforeach()
