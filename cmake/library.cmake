# libnls.so, which depends on libc alone, and with the Java bridge on libjutil.so, and nls_static, the same objects for tests of what the library hides.
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/empty.c "")
add_library(nls SHARED ${CMAKE_CURRENT_BINARY_DIR}/empty.c $<TARGET_OBJECTS:nls_objects>)
add_library(nls::nls ALIAS nls)
set_target_properties(nls PROPERTIES
  LINKER_LANGUAGE C VERSION ${PROJECT_VERSION} SOVERSION 1
  LINK_DEPENDS "${PROJECT_SOURCE_DIR}/cmake/exports.map;${PROJECT_SOURCE_DIR}/cmake/overridable.list")
target_include_directories(nls PUBLIC
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_options(nls PRIVATE
  -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map
  -Wl,--dynamic-list=${PROJECT_SOURCE_DIR}/cmake/overridable.list
  -Wl,-z,relro,-z,now)
if(NLS_SANITIZE)
  target_link_libraries(nls PRIVATE $<BUILD_INTERFACE:nls_instrumented>)
else()
  target_link_options(nls PRIVATE -Wl,-z,defs)
  target_link_libraries(nls PRIVATE $<BUILD_INTERFACE:nls_instrumented>)
endif()

if(NLS_JAVA)
  # libjutil.so is found beside libnls.so, wherever the two are moved.
  target_sources(nls PRIVATE $<TARGET_OBJECTS:nls_jni>)
  target_link_libraries(nls PRIVATE jutil)
  set_target_properties(nls PROPERTIES INSTALL_RPATH "$ORIGIN" BUILD_RPATH_USE_ORIGIN ON)
endif()

add_library(nls_static STATIC EXCLUDE_FROM_ALL $<TARGET_OBJECTS:nls_objects>)
set_target_properties(nls_static PROPERTIES LINKER_LANGUAGE CXX)
target_include_directories(nls_static PUBLIC ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(nls_static PUBLIC nls_instrumented)
