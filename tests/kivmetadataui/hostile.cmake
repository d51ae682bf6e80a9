# Panels with huge values: shown shortened, never written back shortened.
kiv_add_gtest(kivmetadatauiHostileTest
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/HostilePanelTest.cpp
  LINK kivmetadataui
  MAIN kivtest_main_gui)
target_include_directories(kivmetadatauiHostileTest PRIVATE ${PROJECT_SOURCE_DIR}/layout/src ${PROJECT_SOURCE_DIR}/src)
