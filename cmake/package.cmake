# What cmake --install lays out, and make dist packs.
include(CMakePackageConfigHelpers)

# All that is handed out, and the painters of the pictures that it is tried on.
add_custom_target(products)
add_dependencies(products BvUtil BvCalc bvutil filter_auto_levels filter_unsharp_mask filter_duotone sample_badge
                 sample_landscape)

install(TARGETS BvUtil RUNTIME DESTINATION bin ARCHIVE DESTINATION lib)
install(TARGETS BvCalc bvutil RUNTIME DESTINATION bin)
install(FILES ${CMAKE_BINARY_DIR}/BvUtil.debug ${CMAKE_BINARY_DIR}/BvCalc.debug DESTINATION bin)
install(TARGETS filter_auto_levels filter_unsharp_mask filter_duotone LIBRARY DESTINATION bin/filters)

install(DIRECTORY include/bvutil DESTINATION include)
install(FILES ${CMAKE_BINARY_DIR}/BvUtil.lib DESTINATION lib)
set(generated ${CMAKE_BINARY_DIR}/generated/package)
write_basic_package_version_file(${generated}/BvUtilConfigVersion.cmake COMPATIBILITY SameMajorVersion)
configure_file(cmake/package/BvUtil.pc.in ${generated}/BvUtil.pc @ONLY)
install(FILES cmake/package/BvUtilConfig.cmake ${generated}/BvUtilConfigVersion.cmake DESTINATION lib/cmake/BvUtil)
install(FILES ${generated}/BvUtil.pc DESTINATION lib/pkgconfig)

install(FILES docs/package.md DESTINATION . RENAME README.md)
install(DIRECTORY build/docs/html DESTINATION doc OPTIONAL)
install(DIRECTORY samples/c samples/cpp samples/filters samples/settings samples/profiles DESTINATION samples)
install(FILES filterhost/filter_record.h DESTINATION samples/filterhost)
install(FILES module/compiler_threads.cpp DESTINATION samples/module)
install(FILES samples/CMakeLists.txt DESTINATION samples)
install(FILES samples/terrain/survey.csv DESTINATION samples/terrain)
