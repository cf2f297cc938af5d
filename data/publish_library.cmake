# Copies the pristine library in PRISTINE beside the program in TARGET, unless somebody has
# worked with the one that stands there.
#
# MANIFEST remembers what was copied last, a line "hash name" per file. A file in TARGET is ours
# when it is missing, is as the manifest has it, or is already as the new pristine copy has it
# (a copying that was interrupted). Unless all the files are ours, none is touched.

set(manifest "")
if(EXISTS ${MANIFEST})
    file(READ ${MANIFEST} manifest)
endif()

file(GLOB names RELATIVE ${PRISTINE} ${PRISTINE}/Files/*.jpg)
set(wanted "")
set(touched "")
foreach(sidecar Varnholt.mdb-wal Varnholt.mdb-journal)
    if(EXISTS ${TARGET}/${sidecar})
        list(APPEND touched ${sidecar})
    endif()
endforeach()
foreach(name ${names} Varnholt.mdb)
    file(SHA256 ${PRISTINE}/${name} hash)
    string(APPEND wanted "${hash} ${name}\n")
    if(EXISTS ${TARGET}/${name})
        file(SHA256 ${TARGET}/${name} present)
        if(NOT present STREQUAL hash AND NOT manifest MATCHES "${present} ${name}\n")
            list(APPEND touched ${name})
        endif()
    endif()
endforeach()
if(manifest STREQUAL wanted AND EXISTS ${TARGET}/Varnholt.mdb)
    return()
endif()
if(touched)
    list(GET touched 0 first)
    message(STATUS "The library in ${TARGET} has been worked with (${first}) and stays as it is")
    return()
endif()

# The database comes last: until then the pictures that it names are on their way.
file(MAKE_DIRECTORY ${TARGET}/Files)
foreach(name ${names} Varnholt.mdb)
    file(COPY_FILE ${PRISTINE}/${name} ${TARGET}/${name}.new ONLY_IF_DIFFERENT)
    file(RENAME ${TARGET}/${name}.new ${TARGET}/${name})
endforeach()
file(WRITE ${MANIFEST}.new "${wanted}")
file(RENAME ${MANIFEST}.new ${MANIFEST})
message(STATUS "The supplied library stands in ${TARGET}")
