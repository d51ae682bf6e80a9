# The view-settings dialog from the call to its first paint.
kiv_add_benchmark(kivmetadatauiPreferencesBench
  SOURCES PreferencesBench.cpp
  LINK kivmetadataui Qt6::Widgets
  MAIN kivbench_main_metadataui)
