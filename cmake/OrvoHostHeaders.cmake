# The plug-in against the stand-alone host's headers where that host is not built: on Windows. It shows that the sources
# compile there, and that a module links but for the host's own symbols; what comes of it cannot be loaded.
#
# Gives the target orvo_host_api and the functions orvo_maya_plugin and orvo_host_imports.

include(OrvoMayaPlugin)
add_library(orvo_host_api INTERFACE)
target_include_directories(orvo_host_api INTERFACE "${CMAKE_SOURCE_DIR}/host/include")
orvo_maya_definitions(orvo_definitions)
target_compile_definitions(orvo_host_api INTERFACE ${orvo_definitions})

# Links a module with an import library of what its `objects` want of the host's classes, and of nothing else.
function(orvo_host_imports target objects)
  set(library "${CMAKE_CURRENT_BINARY_DIR}/libhost_imports.a")
  add_custom_command(OUTPUT "${library}"
    COMMAND "${CMAKE_COMMAND}" "-DNM=${CMAKE_NM}" "-DDLLTOOL=${CMAKE_DLLTOOL}" "-DLIBRARY=${library}"
            "-DOBJECTS=$<TARGET_OBJECTS:${objects}>" -P "${CMAKE_SOURCE_DIR}/cmake/HostImports.cmake"
    DEPENDS ${objects} "$<TARGET_OBJECTS:${objects}>" "${CMAKE_SOURCE_DIR}/cmake/HostImports.cmake"
    COMMENT "Collecting what the plug-in wants of the host" VERBATIM)
  add_custom_target(${target}_host_imports DEPENDS "${library}")
  add_dependencies(${target} ${target}_host_imports)
  target_link_libraries(${target} PRIVATE "${library}")
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${library}")
endfunction()
