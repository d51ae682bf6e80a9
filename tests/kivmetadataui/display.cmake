# Values as people read them, and the widget hosts embed panels with.
kiv_add_gtest(kivmetadatauiDisplayTest
  SOURCES ValueDisplayTest.cpp MetadataWidgetTest.cpp
  LINK kivmetadataui Qt6::Test
  MAIN kivtest_main_gui)
# The tests reach the library's internal helpers (exported for them).
target_include_directories(kivmetadatauiDisplayTest PRIVATE ${PROJECT_SOURCE_DIR}/src)
