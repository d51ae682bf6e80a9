kiv_add_gtest(kivmetadatauiLayoutTest
  SOURCES TableLayoutTest.cpp MetadataLayoutViewTest.cpp
  LINK kivmetadataui
  MAIN kivtest_main_gui)
# The view builder and the array editor are internal classes; their headers
# find the test-export macro in src/.
target_include_directories(kivmetadatauiLayoutTest PRIVATE ${PROJECT_SOURCE_DIR}/layout/src ${PROJECT_SOURCE_DIR}/src)
