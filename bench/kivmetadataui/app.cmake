# The main metadata dialog on 1,000 files: opening to the first panel painted,
# saving them all (UI responsiveness, and time against the command-line batch).
kiv_add_benchmark(kivmetaAppBench
  SOURCES AppBench.cpp
  LINK kivmetaapp Qt6::Widgets
  MAIN kivbench_main_metadataui)
target_compile_definitions(kivmetaAppBench PRIVATE
  KIVMETA_SAMPLE_PACKET="${PROJECT_SOURCE_DIR}/apps/kivmeta/SamplePacket.xmp")
