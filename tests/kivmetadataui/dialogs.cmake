# The splitter view and the error, template import options and panel
# conversion dialogs.
kiv_add_gtest(kivmetadatauiDialogsTest
  SOURCES
    SplitterTest.cpp
    DialogsTest.cpp
  LINK kivmetadataui Qt6::Test
  MAIN kivtest_main_gui)
# The tests reach the module's resource manager (exported for them).
target_include_directories(kivmetadatauiDialogsTest PRIVATE ${PROJECT_SOURCE_DIR}/src)
