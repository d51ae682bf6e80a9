# Lossless saving: the packet text editor (compiled in, it is private to
# kivmetadata).
kiv_add_gtest(kivmetadataSavingTest
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/PacketTextTest.cpp ${PROJECT_SOURCE_DIR}/platform/kivmetadata/src/PacketText.cpp
  LINK kivmetadata Qt6::Core Qt6::Gui)
target_include_directories(kivmetadataSavingTest PRIVATE ${PROJECT_SOURCE_DIR}/platform/kivmetadata/src)
