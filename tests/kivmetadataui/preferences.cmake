# The metadata preferences dialog and the add-property dialog.
kiv_add_gtest(kivmetadatauiPreferencesTest
  SOURCES PreferencesDialogTest.cpp
  LINK kivmetadataui Qt6::Test
  MAIN kivtest_main_gui)
# The tests reach the library's internal helpers (exported for them).
target_include_directories(kivmetadatauiPreferencesTest PRIVATE ${PROJECT_SOURCE_DIR}/src)
