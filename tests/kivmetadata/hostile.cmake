# Hostile and huge packets and user files: refused or read-only with the limit
# named; real-sized packets stay editable.
kiv_add_gtest(kivmetadataHostileTest
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/HostileTest.cpp
  LINK kivmetadata Qt6::Core Qt6::Gui)
