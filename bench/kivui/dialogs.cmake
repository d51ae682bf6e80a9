kiv_add_benchmark(kivuiDialogsBench
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/DialogsBench.cpp
  LINK kivui Qt6::Widgets
  MAIN kivbench_main_gui)
