# SPDX-License-Identifier: MIT
# Removes the files that "cmake --install" listed when it installed them. Run in the build folder, by
# the target "uninstall". Folders stay, since others may use them.

if(NOT EXISTS install_manifest.txt)
  message(FATAL_ERROR "Nothing was installed from this build folder.")
endif()
file(STRINGS install_manifest.txt names)
foreach(name IN LISTS names)
  if(EXISTS "$ENV{DESTDIR}${name}" OR IS_SYMLINK "$ENV{DESTDIR}${name}")
    message(STATUS "Removing: $ENV{DESTDIR}${name}")
    file(REMOVE "$ENV{DESTDIR}${name}")
  endif()
endforeach()
file(REMOVE install_manifest.txt)
