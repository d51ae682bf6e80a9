# The standard schema, type and panel files, checked from the source folder
# and against the copies compiled into kivmetadata.
kiv_add_gtest(kivmetadataDefinitionsTest
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/StandardDefinitionsTest.cpp
  LINK kivmetadata Qt6::Core Qt6::Gui)
target_compile_definitions(kivmetadataDefinitionsTest PRIVATE
  KIV_METADATA_RESOURCES_DIR="${PROJECT_SOURCE_DIR}/platform/kivmetadata/resources")
