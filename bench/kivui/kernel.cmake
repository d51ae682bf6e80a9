kiv_add_benchmark(kivuiKernelBench
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/KernelBench.cpp
  LINK kivui Qt6::Widgets
  MAIN kivbench_main_gui)
