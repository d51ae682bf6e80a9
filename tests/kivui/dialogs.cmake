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

# The gallery renders every control and dialog in both looks and fails when a
# picture comes out empty or of one colour.
if(TARGET kivgallery)
  add_test(NAME kivgallery.RendersBothLooks
    COMMAND kivgallery --check ${CMAKE_CURRENT_BINARY_DIR}/gallery-png)
  set_tests_properties(kivgallery.RendersBothLooks PROPERTIES
    ENVIRONMENT "QT_QPA_PLATFORM=offscreen"
    TIMEOUT 120)
endif()
