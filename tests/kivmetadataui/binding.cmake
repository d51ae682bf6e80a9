# Module frame, value binding, control factory, provider wrapper and date edit.
kiv_add_gtest(kivmetadatauiBindingTest
  SOURCES
    ModuleTest.cpp
    BindControlTest.cpp
    ControlFactoryTest.cpp
    MetadataProviderWrapperTest.cpp
    UI_DateTextEditTest.cpp
  LINK kivmetadataui Qt6::Test
  MAIN kivtest_main_gui)
# The tests reach the library's internal helpers (exported for them).
target_include_directories(kivmetadatauiBindingTest PRIVATE
  ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/skins)
