# The metadata tree: build and paint, rapid find, checking a large schema.
kiv_add_benchmark(kivmetadatauiTreeBench
  SOURCES TreeBench.cpp
  LINK kivmetadataui Qt6::Widgets
  MAIN kivbench_main_metadataui)
