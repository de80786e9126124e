# What is installed where, and the packages it goes into. packaging/make makes all of them.
#
#   program   torvelhost with the module and the libraries, the manual and the examples; needs no toolkit
#   view      what shows windows on Linux
#   dev       headers and CMake targets for who writes a host, or uses the drawing database alone
#
# On Linux programs and libraries stay together in a folder of their own, as everywhere; bin/ has a link. On Windows
# they lie at the top, with the runtime's libraries.
include(GNUInstallDirs)

if(WIN32)
  set(folder .)
  set(documents .)
else()
  set(folder ${CMAKE_INSTALL_LIBDIR}/torvelcmd2)
  set(documents ${CMAKE_INSTALL_DOCDIR})
endif()

# The module and the database are exported, further below.
install(TARGETS torvelhost torvelcore dialogs torvelfields torvelmtext RUNTIME DESTINATION ${folder} COMPONENT program LIBRARY DESTINATION ${folder}
        COMPONENT program ARCHIVE DESTINATION lib COMPONENT dev)
install(FILES README.md CHANGELOG.md LICENSE DESTINATION ${documents} COMPONENT program)
install(DIRECTORY docs examples DESTINATION ${documents} COMPONENT program PATTERN take_pictures EXCLUDE
        PATTERN smallest_host EXCLUDE PATTERN "*.check.py" EXCLUDE PATTERN make_pictures EXCLUDE)

if(WIN32)
  # They were built with symbols, which take ten times their size.
  install(CODE "
    foreach(name libgcc_s_seh-1 libstdc++-6 libwinpthread-1)
      file(INSTALL \"${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/\${name}.dll\" DESTINATION \"\${CMAKE_INSTALL_PREFIX}\")
      execute_process(COMMAND \"${CMAKE_STRIP}\" \"\${CMAKE_INSTALL_PREFIX}/\${name}.dll\" COMMAND_ERROR_IS_FATAL ANY)
    endforeach()" COMPONENT program)
else()
  install(CODE "
    file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin\")
    file(CREATE_LINK ../${folder}/torvelhost \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/bin/torvelhost\" SYMBOLIC)"
          COMPONENT program)
  if(NOT TORVEL_SANITIZE)
    set(manual "${CMAKE_BINARY_DIR}/torvelhost.1")
    add_custom_command(
      OUTPUT "${manual}"
      COMMAND "${CMAKE_COMMAND}" "-DPROGRAM=$<TARGET_FILE:torvelhost>" "-DTEMPLATE=${PROJECT_SOURCE_DIR}/packaging/torvelhost.1"
              "-DOUTPUT=${manual}" -P "${PROJECT_SOURCE_DIR}/packaging/man_page.cmake"
      DEPENDS torvelhost torvelcore packaging/torvelhost.1 packaging/man_page.cmake
      VERBATIM)
    add_custom_target(manual ALL DEPENDS "${manual}")
    add_dependencies(program manual)
    install(FILES "${manual}" DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
  endif()
  install(FILES packaging/torvelhost.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
          RENAME torvelhost COMPONENT program)
  if(TARGET torvelshaping)
    install(TARGETS torvelshaping LIBRARY DESTINATION ${folder} COMPONENT program)
  endif()
  if(TARGET torvelqt)
    install(TARGETS torvelqt LIBRARY DESTINATION ${folder} COMPONENT view)
    install(FILES packaging/torvelhost.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT view)
    install(FILES packaging/torvelhost.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
            COMPONENT view)
  endif()
endif()

# ---- find_package(torvelcmd2)
set(headers include/torvelcmd2)
install(DIRECTORY hostapi drawingdb/include/drawingdb DESTINATION ${headers} COMPONENT dev FILES_MATCHING PATTERN "*.h")
install(TARGETS hostapi torvel_boost EXPORT torvelcmd2)
install(TARGETS drawingdb torvelcmd2 EXPORT torvelcmd2 RUNTIME DESTINATION ${folder} COMPONENT program
        LIBRARY DESTINATION ${folder} COMPONENT program ARCHIVE DESTINATION lib COMPONENT dev)
set(config ${CMAKE_INSTALL_DATADIR}/cmake/torvelcmd2)
install(EXPORT torvelcmd2 FILE torvelcmd2Config.cmake NAMESPACE torvelcmd2:: DESTINATION ${config} COMPONENT dev)
include(CMakePackageConfigHelpers)
write_basic_package_version_file("${CMAKE_BINARY_DIR}/torvelcmd2ConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_BINARY_DIR}/torvelcmd2ConfigVersion.cmake" DESTINATION ${config} COMPONENT dev)

# ---- packages
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)  # `program` is what is built for them, not the tests
set(CPACK_PACKAGE_NAME torvelcmd2)
set(CPACK_PACKAGE_VENDOR "torvelcmd2 developers")
set(CPACK_PACKAGE_CONTACT "torvelcmd2 developers <torvelcmd2@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Attributes of blocks in DXF drawings: define, edit, synchronise, extract")
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL program view dev)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
  set(CPACK_SYSTEM_NAME windows-x86_64)
  set(CPACK_COMPONENTS_ALL program dev)
else()
  set(CPACK_SYSTEM_NAME linux-x86_64)
  set(CPACK_DEB_COMPONENT_INSTALL ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
  set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME torvelcmd2)
  set(CPACK_DEBIAN_VIEW_PACKAGE_NAME torvelcmd2-view)
  set(CPACK_DEBIAN_VIEW_PACKAGE_DEPENDS "torvelcmd2 (= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_DEV_PACKAGE_NAME torvelcmd2-dev)
  set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "torvelcmd2 (= ${PROJECT_VERSION}), libboost-dev")
  set(CPACK_COMPONENT_PROGRAM_DESCRIPTION "The command module, the drawing database and torvelhost, which runs them by scripts or at a prompt.")
  set(CPACK_COMPONENT_VIEW_DESCRIPTION "Windows for torvelhost: dialogs, and the drawing in a view.")
  set(CPACK_COMPONENT_DEV_DESCRIPTION "Headers and CMake targets for programs that load the module or use the drawing database.")
endif()
include(CPack)
