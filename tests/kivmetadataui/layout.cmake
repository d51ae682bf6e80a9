kiv_add_gtest(kivmetadatauiLayoutTest
  SOURCES TableLayoutTest.cpp MetadataLayoutViewTest.cpp
  LINK kivmetadataui
  MAIN kivtest_main_gui)
# The view builder and the array editor are internal classes.
target_include_directories(kivmetadatauiLayoutTest PRIVATE ${PROJECT_SOURCE_DIR}/layout/src)
