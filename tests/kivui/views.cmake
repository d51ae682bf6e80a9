kiv_add_gtest(kivuiViewsTest
  SOURCES ViewsTreeTest.cpp ViewsScrollSectionTest.cpp
  LINK kivui Qt6::Test
  MAIN kivtest_main_gui)
