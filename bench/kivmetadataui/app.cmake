# kivmeta on many files at once: from opening the files to the first panel painted.
kiv_add_benchmark(kivmetaAppBench
  SOURCES AppBench.cpp
  LINK kivmetaapp Qt6::Widgets
  MAIN kivbench_main_metadataui)
target_compile_definitions(kivmetaAppBench PRIVATE
  KIVMETA_SAMPLE_PACKET="${PROJECT_SOURCE_DIR}/apps/kivmeta/SamplePacket.xmp")
