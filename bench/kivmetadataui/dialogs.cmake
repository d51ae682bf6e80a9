# The error dialog over a long error log, to its first paint.
kiv_add_benchmark(kivmetadatauiDialogsBench
  SOURCES DialogsBench.cpp
  LINK kivmetadataui Qt6::Widgets
  MAIN kivbench_main_metadataui)
