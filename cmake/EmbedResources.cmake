# velquor_embed_resources(OUTPUT <file.cpp> RESOURCES <type> <name> <path> [<type> <name> <path> ...])
#
# Generates, at build time, a C++ source that defines velquor::EmbeddedResourceTable(): every
# listed file as an aligned constexpr byte array with its resource type and name. Editing a
# listed file regenerates the source.
set(VELQUOR_EMBED_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/EmbedResourcesScript.cmake)

function(velquor_embed_resources)
  cmake_parse_arguments(ARG "" "OUTPUT" "RESOURCES" ${ARGN})
  list(LENGTH ARG_RESOURCES count)
  math(EXPR remainder "${count} % 3")
  if(NOT remainder EQUAL 0)
    message(FATAL_ERROR "velquor_embed_resources: RESOURCES must be <type> <name> <path> triples")
  endif()
  set(manifest "${ARG_OUTPUT}.manifest")
  set(lines "")
  set(paths "")
  math(EXPR last "${count} - 1")
  foreach(i RANGE 0 ${last} 3)
    math(EXPR j "${i} + 1")
    math(EXPR k "${i} + 2")
    list(GET ARG_RESOURCES ${i} type)
    list(GET ARG_RESOURCES ${j} name)
    list(GET ARG_RESOURCES ${k} path)
    get_filename_component(path "${path}" ABSOLUTE)
    string(APPEND lines "${type}|${name}|${path}\n")
    list(APPEND paths "${path}")
  endforeach()
  file(CONFIGURE OUTPUT "${manifest}" CONTENT "${lines}")
  add_custom_command(
    OUTPUT "${ARG_OUTPUT}"
    COMMAND ${CMAKE_COMMAND} -DMANIFEST=${manifest} -DOUTPUT=${ARG_OUTPUT} -P ${VELQUOR_EMBED_SCRIPT}
    DEPENDS ${paths} "${manifest}" ${VELQUOR_EMBED_SCRIPT}
    COMMENT "Embedding ${count} resource fields into ${ARG_OUTPUT}"
    VERBATIM)
endfunction()
