# TagLib, the reader of audio files' tags (Debian: libtag1-dev), as the target
# TagLib::tag. Sets TOVAL_TAGLIB_FOUND.
if(NOT TARGET TagLib::tag)
    find_path(TOVAL_TAGLIB_INCLUDE taglib/fileref.h)
    find_library(TOVAL_TAGLIB_LIBRARY tag)
    if(TOVAL_TAGLIB_INCLUDE AND TOVAL_TAGLIB_LIBRARY)
        add_library(TagLib::tag UNKNOWN IMPORTED)
        set_target_properties(TagLib::tag PROPERTIES
            IMPORTED_LOCATION ${TOVAL_TAGLIB_LIBRARY}
            INTERFACE_INCLUDE_DIRECTORIES ${TOVAL_TAGLIB_INCLUDE})
    endif()
endif()
if(TARGET TagLib::tag)
    set(TOVAL_TAGLIB_FOUND ON)
else()
    set(TOVAL_TAGLIB_FOUND OFF)
endif()
