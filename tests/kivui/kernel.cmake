# Node model, events, input capture and controls of kivui.
file(GLOB KIVUI_KERNEL_TEST_SOURCES CONFIGURE_DEPENDS
  ${CMAKE_CURRENT_LIST_DIR}/Kernel*Test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Controls*Test.cpp)
kiv_add_gtest(KivuiKernelTest
  SOURCES ${KIVUI_KERNEL_TEST_SOURCES}
  LINK kivui Qt6::Test
  MAIN kivtest_main_gui)
