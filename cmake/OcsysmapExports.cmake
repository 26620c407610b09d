# ocsysmap_export_c_abi(TARGET OBJECTS_TARGET): link the shared library TARGET,
# built from the objects of OBJECTS_TARGET, with a version script that exports
# the C names those objects mark exported and nothing else.
function(ocsysmap_export_c_abi target objects)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
  string(TOUPPER "${target}_${PROJECT_VERSION_MAJOR}" node)
  add_custom_command(OUTPUT ${script}
    COMMAND sh ${PROJECT_SOURCE_DIR}/cmake/c_abi_version_script.sh ${CMAKE_READELF} ${node}
      ${script} $<TARGET_OBJECTS:${objects}>
    DEPENDS $<TARGET_OBJECTS:${objects}> ${PROJECT_SOURCE_DIR}/cmake/c_abi_version_script.sh
    COMMAND_EXPAND_LISTS VERBATIM)
  target_sources(${target} PRIVATE ${script})
  target_link_options(${target} PRIVATE "LINKER:--version-script=${script}")
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
endfunction()
