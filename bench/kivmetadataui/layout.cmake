kiv_add_benchmark(kivmetadatauiLayoutBench
  SOURCES LayoutBench.cpp
  LINK kivmetadataui Qt6::Widgets
  MAIN kivbench_main_metadataui)
