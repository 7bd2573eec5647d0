# find_package(BvUtil) gives BvUtil::BvUtil, from wherever the package was unpacked.
if(NOT WIN32)
    set(BvUtil_FOUND FALSE)
    set(BvUtil_NOT_FOUND_MESSAGE "BvUtil is a library for 32-bit Windows")
    return()
endif()

get_filename_component(bvutil_prefix "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)
if(MSVC)
    set(bvutil_import_library "${bvutil_prefix}/lib/BvUtil.lib")
else()
    set(bvutil_import_library "${bvutil_prefix}/lib/libBvUtil.dll.a")
endif()
if(NOT TARGET BvUtil::BvUtil)
    add_library(BvUtil::BvUtil SHARED IMPORTED)
    set_target_properties(BvUtil::BvUtil PROPERTIES
                          IMPORTED_LOCATION "${bvutil_prefix}/bin/BvUtil.dll"
                          IMPORTED_IMPLIB "${bvutil_import_library}"
                          INTERFACE_INCLUDE_DIRECTORIES "${bvutil_prefix}/include")
endif()
unset(bvutil_prefix)
unset(bvutil_import_library)
