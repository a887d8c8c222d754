# SPDX-License-Identifier: BSD-3-Clause
# Installation. A renderer looks for libraries in lib/ and for declarations in include/; other code finds the
# public classes as the CMake package vhl (target vhl::core) or through pkg-config.
if(NOT PROJECT_IS_TOP_LEVEL)
    return()
endif()
include(CMakePackageConfigHelpers)

install(TARGETS vhl LIBRARY DESTINATION lib COMPONENT vhl)
install(FILES declarations/vhl.mi declarations/recipes.mi DESTINATION include COMPONENT vhl)

install(TARGETS vhl_core EXPORT vhl ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT vhl)
install(FILES ${VHL_PUBLIC_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vhl COMPONENT vhl)

# The value types convert to and from the renderer's own, so its interface comes along, unless the library was
# built against the renderer's headers: then who uses it has them.
set(VHL_INTERFACE_CFLAGS "-I\${includedir}/vhl/mi")
if(VHL_RENDERER_INCLUDE_DIR)
    set(VHL_INTERFACE_CFLAGS "-I${VHL_RENDERER_INCLUDE_DIR}")
else()
    install(FILES mi/shader.h mi/geoshader.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vhl/mi COMPONENT vhl)
    target_include_directories(vhl_core INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/vhl/mi>)
endif()
target_include_directories(vhl_core INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/vhl)
install(EXPORT vhl NAMESPACE vhl:: FILE vhlTargets.cmake DESTINATION ${package} COMPONENT vhl)
configure_package_config_file(cmake/vhlConfig.cmake.in vhlConfig.cmake INSTALL_DESTINATION ${package})
write_basic_package_version_file(vhlConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vhlConfig.cmake ${PROJECT_BINARY_DIR}/vhlConfigVersion.cmake
        DESTINATION ${package} COMPONENT vhl)

# Relative to the file itself, so that an installation can be moved.
file(RELATIVE_PATH VHL_PREFIX_FROM_PKGCONFIG /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/vhl.pc.in vhl.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vhl.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT vhl)

# What people read: manual, examples, reference pages, manual pages and completion. Links between docs/ and examples/
# hold, since both lie side by side in every layout.
install(FILES README.md CONTRIBUTING.md CHANGELOG.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT manual)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT manual
        PATTERN man EXCLUDE REGEX "examples/CMakeLists.txt$" EXCLUDE)
if(VHL_HOST)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/reference DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT manual)
    install(FILES docs/man/vhrender.1 docs/man/vhpano.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT host)
    foreach(program vhrender vhpano)
        install(FILES completion/${program}.bash RENAME ${program}
                DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT host)
        install(FILES completion/_${program}
                DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT host)
        install(FILES completion/${program}.fish
                DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT host)
    endforeach()
endif()

# Packages: `cpack -G TGZ` writes a folder that runs wherever it is unpacked, `cpack -G DEB` one for Debian.
find_program(VHL_SHLIBDEPS dpkg-shlibdeps DOC "Finds what a Debian package depends on; without it there is none")
set(CPACK_GENERATOR TGZ)
if(VHL_SHLIBDEPS)
    list(APPEND CPACK_GENERATOR DEB)
endif()
set(CPACK_PACKAGE_VENDOR "the vhl maintainers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "composable utility shaders and a stand-in renderer")
set(CPACK_PACKAGE_DESCRIPTION "Small utility shaders for the mental ray renderer in one shared library:
arithmetic, ranges, conversions, channels, mixers, logic, the renderer's state,
choice by object name, layers, panoramic lenses and environments.
.
vhrender loads shader libraries by the same binary interface, reads scenes in
the renderer's language and renders pictures. vhpano converts panoramic images
between layouts.")
set(CPACK_PACKAGE_FILE_NAME vhl-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/arrange.cmake)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "the vhl maintainers <maintainers@vhl.invalid>")
set(CPACK_DEBIAN_PACKAGE_RELEASE 1) # of the same sources; without one Debian takes itself for their author
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "graphviz, parallel")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
include(CPack)
