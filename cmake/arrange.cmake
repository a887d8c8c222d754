# SPDX-License-Identifier: BSD-3-Clause
# Run by cpack between installation and packing: gives each kind of package its layout.
cmake_minimum_required(VERSION 3.22)

function(move from to)
    cmake_path(GET to PARENT_PATH folder)
    file(MAKE_DIRECTORY ${folder})
    file(RENAME ${from} ${to})
endfunction()

file(GLOB_RECURSE licence ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/LICENSE)
cmake_path(GET licence PARENT_PATH doc)
cmake_path(SET root NORMALIZE ${doc}/../../..)

if(CPACK_GENERATOR STREQUAL "DEB")
    # The renderer's folders, lib/ and include/, lie together under lib/vhl: shader libraries are no libraries that
    # programs link, and their declarations are no headers. vhrender looks beside what its link points to.
    file(GLOB files RELATIVE ${root} ${root}/bin/* ${root}/lib/*.so ${root}/include/*.mi)
    foreach(file ${files})
        move(${root}/${file} ${root}/lib/vhl/${file})
        if(file MATCHES "^bin/")
            file(MAKE_DIRECTORY ${root}/bin)
            file(CREATE_LINK ../lib/vhl/${file} ${root}/${file} SYMBOLIC)
        endif()
    endforeach()
    file(RENAME ${doc}/LICENSE ${doc}/copyright)
    file(RENAME ${doc}/CHANGELOG.md ${doc}/changelog)
    string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
    file(WRITE ${doc}/changelog.Debian
"vhl (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * Packed from the sources; changelog.gz tells what has changed in them.

 -- ${CPACK_DEBIAN_PACKAGE_MAINTAINER}  ${now}
")
    file(READ ${doc}/README.md text) # which links to both
    string(REPLACE "](CHANGELOG.md)" "](changelog.gz)" text "${text}")
    string(REPLACE "](LICENSE)" "](copyright)" text "${text}")
    file(WRITE ${doc}/README.md "${text}")
    file(GLOB pages ${root}/share/man/man1/*.1)
    execute_process(COMMAND gzip -9n ${doc}/changelog ${doc}/changelog.Debian ${pages} COMMAND_ERROR_IS_FATAL ANY)
else()
    # One folder, whose first level shows everything.
    foreach(entry README.md CONTRIBUTING.md CHANGELOG.md LICENSE docs examples reference)
        move(${doc}/${entry} ${root}/${entry})
    endforeach()
    file(REMOVE_RECURSE ${root}/share/doc)
endif()
