# End-to-end tests of kivmeta: the binary on JPEG files the tests make, and
# its window, edits and screenshots called in-process.
kiv_add_gtest(kivmetaAppTest
  SOURCES KivmetaTest.cpp
  LINK kivmetaapp Qt6::Test
  MAIN kivtest_main_gui)
add_dependencies(kivmetaAppTest kivmeta)
target_compile_definitions(kivmetaAppTest PRIVATE
  KIVMETA_BINARY="$<TARGET_FILE:kivmeta>")
