# Drawing, resources, preferences, skins, dialogs and message boxes of kivui.
kiv_add_gtest(KivuiDialogsTest
  SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/DialogsTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/SkinsTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ResourcesTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ResourcesDrawingTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/ResourcesPrefsTest.cpp
    ${CMAKE_CURRENT_LIST_DIR}/dialogs_data/KivuiDialogsTest.qrc
  LINK kivui Qt6::Test
  MAIN kivtest_main_gui)
