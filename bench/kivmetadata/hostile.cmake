# Hostile and huge packets from open to the first panel painted, and the
# check that guards the XMP toolkit (compiled in: it is private to
# kivmetadata).
kiv_add_benchmark(kivmetadataHostileBench
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/HostileBench.cpp ${PROJECT_SOURCE_DIR}/platform/kivmetadata/src/PacketLimits.cpp
  LINK kivmetadataui Qt6::Widgets
  MAIN kivbench_main_metadataui)
target_include_directories(kivmetadataHostileBench PRIVATE
  ${PROJECT_SOURCE_DIR}/platform/kivmetadata/src ${PROJECT_SOURCE_DIR}/tests/kivmetadata)
