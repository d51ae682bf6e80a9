# Our own XMP container readers and writers (JPEG, PNG, TIFF), byte level.
# The source is compiled in, so the helpers stay out of kivmetadata's exports.
find_package(ZLIB REQUIRED)
kiv_add_gtest(kivmetadataContainersTest
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/XmpContainersTest.cpp ${PROJECT_SOURCE_DIR}/platform/kivmetadata/src/XmpContainers.cpp
  LINK Qt6::Core ZLIB::ZLIB Qt6::Gui)
target_include_directories(kivmetadataContainersTest PRIVATE ${PROJECT_SOURCE_DIR}/platform/kivmetadata/src)
