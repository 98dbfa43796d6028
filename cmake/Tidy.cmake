# The target tidy: clang-tidy over everything. Not part of the tests: it takes as long as they do.
# Sources include what moc makes of them, so that comes first.
function(gravlin_moc_targets folder result)
  set(found)
  get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    get_target_property(has_moc ${target} AUTOMOC)
    if(has_moc)
      list(APPEND found ${target}_autogen)
    endif()
  endforeach()
  get_property(folders DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
  foreach(below IN LISTS folders)
    gravlin_moc_targets(${below} found_below)
    list(APPEND found ${found_below})
  endforeach()
  set(${result} ${found} PARENT_SCOPE)
endfunction()

add_custom_target(tidy
  COMMAND ${PROJECT_SOURCE_DIR}/scripts/tidy ${PROJECT_BINARY_DIR}
  USES_TERMINAL
  VERBATIM)
gravlin_moc_targets(${PROJECT_SOURCE_DIR} moc_targets)
if(moc_targets)
  add_dependencies(tidy ${moc_targets})
endif()
