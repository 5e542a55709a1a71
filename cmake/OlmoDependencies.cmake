# The system libraries Olmo builds on: Xlib, Xt, Motif, Xft/fontconfig and,
# for the tests, XTest, libpng and GoogleTest.
find_package(X11 REQUIRED)
foreach(part Xt Xft Xrender Xtst Xext)
    if(NOT TARGET X11::${part})
        message(FATAL_ERROR "X11 component ${part} is missing (install its -dev package)")
    endif()
endforeach()
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(FONTCONFIG REQUIRED IMPORTED_TARGET fontconfig)

find_path(MOTIF_INCLUDE_DIR Xm/Xm.h)
find_library(MOTIF_LIBRARY Xm)
if(NOT MOTIF_INCLUDE_DIR OR NOT MOTIF_LIBRARY)
    message(FATAL_ERROR "Motif (libXm) not found: install libmotif-dev")
endif()
# An imported library, so that libXm is always linked ahead of libXt:
# otherwise Xt's own VendorShell takes the place of Motif's and the first
# Motif shell fails.
add_library(olmo_motif SHARED IMPORTED)
set_target_properties(olmo_motif PROPERTIES
    IMPORTED_LOCATION ${MOTIF_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${MOTIF_INCLUDE_DIR}
    INTERFACE_LINK_LIBRARIES "X11::Xt;X11::X11")
