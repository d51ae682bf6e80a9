# The main metadata dialog: saving many files in the background, the error
# list after a failed save, and templates applied to real files.
kiv_add_gtest(kivmetadatauiDialogTest
  SOURCES MetadataDialogTest.cpp
  LINK kivmetadataui kivmetasample Qt6::Widgets
  MAIN kivtest_main_gui)
# The background job's test hook is internal; its header is in src/.
target_include_directories(kivmetadatauiDialogTest PRIVATE ${PROJECT_SOURCE_DIR}/src)
