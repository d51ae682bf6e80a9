kiv_add_benchmark(kivuiViewsBench
  SOURCES ViewsBench.cpp
  LINK kivui Qt6::Widgets
  MAIN kivbench_main_gui)
