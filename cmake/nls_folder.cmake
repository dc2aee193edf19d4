# nls_folder(a.cpp b.cpp …): sources of the current folder into the library.
function(nls_folder)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ OUTPUT_VARIABLE sources)
  target_sources(nls_objects PRIVATE ${sources})
endfunction()
