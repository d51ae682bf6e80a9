kiv_add_benchmark(kivmetadatauiBindingBench
  SOURCES BindingBench.cpp
  LINK kivmetadataui Qt6::Widgets
  MAIN kivbench_main_metadataui)
