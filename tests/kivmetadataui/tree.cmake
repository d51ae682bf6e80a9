# The metadata tree: check-box rule, rapid find, focus order, editing.
kiv_add_gtest(kivmetadatauiTreeTest
  SOURCES MetadataViewTest.cpp
  LINK kivmetadataui Qt6::Test
  MAIN kivtest_main_gui)
# The tests reach the library's internal classes (exported for them).
target_include_directories(kivmetadatauiTreeTest PRIVATE ${PROJECT_SOURCE_DIR}/src)
