# What `cmake --install` lays out: the library with its headers, the data file, the tools, and the two ways to find them,
# find_package(nls) with the target nls::nls, and pkg-config with nls.pc.
include(CMakePackageConfigHelpers)
set(NLS_INSTALL_DATADIR ${CMAKE_INSTALL_DATADIR}/nls)
set(NLS_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/nls)

install(TARGETS nls EXPORT nlsTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/nls TYPE INCLUDE)
if(NLS_JAVA)
  install(TARGETS jutil EXPORT nlsTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(FILES jutil/include/jutil.h TYPE INCLUDE)
  install_jar(nls_jar DESTINATION ${CMAKE_INSTALL_DATADIR}/java)
endif()
if(NLS_TOOLS)
  # The tools find libnls.so beside themselves, wherever the tree is moved.
  file(RELATIVE_PATH library_from_bin /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  set_target_properties(mkconvmap PROPERTIES INSTALL_RPATH "$ORIGIN/${library_from_bin}")
  install(TARGETS mkconvmap RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  if(NLS_JAVA)
    set_target_properties(mkmessages PROPERTIES INSTALL_RPATH "$ORIGIN/${library_from_bin}")
    install(TARGETS mkmessages RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
  install(FILES ${NLS_CONVMAP} ${NLS_SMALL_CONVMAP} DESTINATION ${NLS_INSTALL_DATADIR})
endif()
install(FILES LICENSE README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN "*.md")

configure_package_config_file(cmake/nlsConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/nlsConfig.cmake
  INSTALL_DESTINATION ${NLS_INSTALL_CMAKEDIR} PATH_VARS NLS_INSTALL_DATADIR)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/nlsConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/nlsConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/nlsConfigVersion.cmake
  DESTINATION ${NLS_INSTALL_CMAKEDIR})
install(EXPORT nlsTargets NAMESPACE nls:: DESTINATION ${NLS_INSTALL_CMAKEDIR})

# The paths of nls.pc are told from where nls.pc itself stands, so that an installed tree can be moved.
file(RELATIVE_PATH NLS_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/nls.pc.in ${CMAKE_CURRENT_BINARY_DIR}/nls.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/nls.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
