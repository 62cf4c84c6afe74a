# The parts of an installation that tell where the others are, or that belong to their owner once they are there.
# Given: the prefix that was built for, and the configuration file that programs and manuals know.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL builtPrefix)
  string(REGEX REPLACE "^/usr$" "" installed "${CMAKE_INSTALL_PREFIX}")
  string(APPEND installed /etc/msan/msand.toml)
  message(STATUS "Note: msand was built to look for ${configuration}; with --config, or configured anew with "
                 "-DCMAKE_INSTALL_PREFIX=${CMAKE_INSTALL_PREFIX}, it takes ${installed}")
  set(configuration ${installed})
endif()
set(MSAN_CONFIGURATION ${configuration})
set(MSAN_PROGRAM ${CMAKE_INSTALL_PREFIX}/bin/msand)

set(unit ${CMAKE_INSTALL_PREFIX}/lib/systemd/system/msand.service)
message(STATUS "Installing: $ENV{DESTDIR}${unit}")
file(READ ${CMAKE_CURRENT_LIST_DIR}/msand.service.in text)
string(CONFIGURE "${text}" text @ONLY)
file(WRITE $ENV{DESTDIR}${unit} "${text}")
list(APPEND CMAKE_INSTALL_MANIFEST_FILES ${unit})

# A configuration that is there stays; it may hold secrets.
if(EXISTS $ENV{DESTDIR}${configuration})
  message(STATUS "Kept: $ENV{DESTDIR}${configuration}")
else()
  get_filename_component(folder ${configuration} DIRECTORY)
  file(INSTALL ${CMAKE_CURRENT_LIST_DIR}/msand.toml DESTINATION ${folder} PERMISSIONS OWNER_READ OWNER_WRITE)
endif()
