# kiv_set_warnings(<target>)
# The warnings of all our code; errors too unless KIV_WERROR is off (for
# packagers whose compilers warn about more).
function(kiv_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wnon-virtual-dtor -Wshadow)
  if(KIV_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# kiv_strict_qt_strings(<target>)
# No implicit conversions between QString and 8-bit text: every such place
# says which encoding it means (QStringLiteral, fromUtf8, toUtf8, ...).
function(kiv_strict_qt_strings target)
  target_compile_definitions(${target} PRIVATE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING)
endfunction()

# kiv_add_library(<name> SOURCES ... [PUBLIC_LINK ...] [PRIVATE_LINK ...])
# A shared library of this project: hidden visibility, generated export header
# <name>/<name>_export.h, public headers in <folder>/include, warnings as errors.
function(kiv_add_library name)
  cmake_parse_arguments(ARG "" "INCLUDE_DIR" "SOURCES;PUBLIC_LINK;PRIVATE_LINK" ${ARGN})
  add_library(${name} SHARED ${ARG_SOURCES})
  add_library(kivmetadataui::${name} ALIAS ${name})
  if(NOT ARG_INCLUDE_DIR)
    set(ARG_INCLUDE_DIR ${CMAKE_CURRENT_SOURCE_DIR}/include)
  endif()
  string(TOUPPER ${name} upper)
  generate_export_header(${name}
    BASE_NAME ${upper}
    EXPORT_FILE_NAME ${CMAKE_CURRENT_BINARY_DIR}/export/${name}/${name}_export.h)
  target_include_directories(${name} PUBLIC
    $<BUILD_INTERFACE:${ARG_INCLUDE_DIR}>
    $<BUILD_INTERFACE:${CMAKE_CURRENT_BINARY_DIR}/export>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC_LINK} PRIVATE ${ARG_PRIVATE_LINK})
  kiv_set_warnings(${name})
  set_target_properties(${name} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
    EXPORT_NAME ${name}
    # Installed, each library finds the others beside it (a run path is not
    # inherited from the executable).
    INSTALL_RPATH "$ORIGIN")
  install(TARGETS ${name} EXPORT kivmetadatauiTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(DIRECTORY ${ARG_INCLUDE_DIR}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/export/${name}/${name}_export.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${name})
endfunction()

# kiv_add_gtest(<name> LAYER <core|gui> SOURCES ... LINK ...)
# One GoogleTest binary; its main sets up Qt offscreen and an isolated
# per-user data folder, so tests never touch the real home directory.
function(kiv_add_gtest name)
  cmake_parse_arguments(ARG "" "MAIN" "SOURCES;LINK" ${ARGN})
  if(NOT ARG_MAIN)
    set(ARG_MAIN kivtest_main_core)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  # Listed by layer (the folder below tests/) for targets such as kiv_model_tests.
  get_filename_component(layer ${CMAKE_CURRENT_SOURCE_DIR} NAME)
  set_property(GLOBAL APPEND PROPERTY KIV_TESTS_${layer} ${name})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} ${ARG_MAIN} GTest::gtest GTest::gmock)
  kiv_set_warnings(${name})
  # The code under test is optimised in its libraries; the test code itself,
  # mostly GoogleTest macros, builds 2-3x faster unoptimised and without
  # debug information. A Debug build keeps its flags.
  target_compile_options(${name} PRIVATE "$<$<NOT:$<CONFIG:Debug>>:-O0;-g0>")
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen" TIMEOUT 300)
endfunction()
